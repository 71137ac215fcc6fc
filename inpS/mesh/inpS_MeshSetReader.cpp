#include "inpS/mesh/inpS_MeshSetReader.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "inpS/sets/inpS_SetReader.h"
#include "inpS/sets/inpS_SetServices.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

void inpS_MeshSetReader::ReadStored(const KvoObjMesh& mesh, inpS_MeshScope& scope) {
  for (const inpS_SetKind kind : {inpS_SetKind::Nodes, inpS_SetKind::Elements}) {
    const bool nodes = kind == inpS_SetKind::Nodes;
    const long long base = nodes ? scope.nodeBase : scope.elementBase;
    for (const bool internal : {false, true}) {
      for (const KvoSimPosition& position :
           nodes ? mesh.NodeSets(scope.owner, internal) : mesh.ElementSets(scope.owner, internal)) {
        const KvoSimDataRecord record = position.DataRecord();
        inpS_SetDefinition& set = scope.sets.FindOrAdd(
            kind, record.ReturnString(nodes ? eds_NodeSet_Name : eds_ElementSet_Name));
        set.internal = internal;
        set.unsorted = record.GetBool(nodes ? eds_NodeSet_Unsorted : eds_ElementSet_Unsorted);
        set.isStored = true;
        inpS_SetServices::CopySet(position, base, set);
      }
    }
  }
}

const inp_Item* inpS_MeshSetReader::FindName(const inp_Keyword& keyword,
                                             std::string_view parameter) {
  const inp_Item* name = keyword.Find(parameter);
  if (!name || !name->AsString().empty()) return name;
  m_messages.AddError(
      inp_Utils::MessageAtParameter(keyword, parameter, "The name of the set is missing."));
  return nullptr;
}

inpS_SetDefinition* inpS_MeshSetReader::Open(const inp_Keyword& keyword, inpS_MeshScope& scope,
                                             inpS_SetKind kind, std::string_view parameter) {
  const inp_Item* name = FindName(keyword, parameter);
  if (!name) return nullptr;
  inpS_SetDefinition& set = scope.sets.FindOrAdd(kind, name->AsString());
  inpS_beginRuns(set, keyword);
  return &set;
}

// Null: there is none, or nothing to be read into it.
inpS_SetDefinition* inpS_MeshSetReader::Begin(const inp_Keyword& keyword, inpS_MeshScope& scope,
                                              inpS_SetKind kind, cow_String& instance) {
  const char* nameParameter = kind == inpS_SetKind::Nodes ? "nset" : "elset";
  const inp_Item* name = keyword.Find(nameParameter);
  keyword.Find("input"); // the parser has read that file's lines
  const bool internal = inpS_readFlag(keyword, "internal", m_messages, inpS_OddFlag::Kept);
  const bool unsorted = kind == inpS_SetKind::Nodes &&
                        inpS_readFlag(keyword, "unsorted", m_messages, inpS_OddFlag::Kept);
  const bool instanceKnown = FindInstance(keyword, scope, instance);
  if (!name || name->AsString().empty()) {
    m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_app_RequiredParameter, {nameParameter})));
    m_messages.LeaveOut("set keyword");
    return nullptr;
  }
  inpS_SetDefinition& set = scope.sets.FindOrAdd(kind, name->AsString());
  set.isStored = false;
  inpS_dropRepeated(keyword, set.otherParameters, m_messages); // of another keyword of the set
  inpS_tellOtherParameters(keyword, m_messages);
  set.otherParameters += inpS_takeOtherParameters(keyword);
  set.internal = set.internal || internal;
  set.unsorted = set.unsorted || unsorted;
  if (instanceKnown) return &set;
  // What names it finds it, with nothing of this keyword.
  if (kind == inpS_SetKind::Nodes && keyword.HasParameter("elset"))
    m_messages.LeaveOut("set entry");
  else
    m_messages.LeaveOut("data line", keyword.Data().Rows());
  return nullptr;
}

void inpS_MeshSetReader::Read(const inp_Keyword& keyword, inpS_MeshScope& scope,
                              inpS_SetKind kind) {
  const bool generate = inpS_readFlag(keyword, "generate", m_messages);
  if (kind == inpS_SetKind::Nodes) FindName(keyword, "elset"); // told where it is without a value
  cow_String instance;
  inpS_SetDefinition* const set = Begin(keyword, scope, kind, instance);
  if (!set) return;
  inpS_SetReader reader(keyword, *set, m_messages);
  reader.SetInstance(instance);
  if (generate)
    reader.GenerateSetIds();
  else
    reader.Read();
}

void inpS_MeshSetReader::ReadElsetNodes(const inp_Keyword& keyword, inpS_MeshScope& scope) {
  inpS_readFlag(keyword, "generate", m_messages);
  const inp_Item& elset = *keyword.Find("elset");
  cow_String instance;
  inpS_SetDefinition* const set = Begin(keyword, scope, inpS_SetKind::Nodes, instance);
  if (!set) return;
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row)
    if (data.Cols(row) > 0) {
      m_messages.AddWarning(inp_Utils::MessageAtRow(
          keyword, row,
          "A set of the nodes of elements takes no data lines; from here on they are left out."));
      m_messages.LeaveOut("data line", data.Rows() - row);
      break;
    }
  set->keywords.push_back(keyword);
  inpS_SetEntry& entry = set->entries.emplace_back();
  entry.kind = inpS_SetEntry::Kind::NodesOfElset;
  entry.name = elset.AsString();
  entry.instance = instance;
  entry.keyword = static_cast<int>(set->keywords.size()) - 1;
  const inpS_ScopedField field = inpS_scopedField(elset.Verbatim());
  if (!field.IsScoped()) return;
  inpS_reportDropped(keyword, -1, 0, field, m_messages);
  entry.instance = field.instance;
  entry.name = field.name;
}

bool inpS_MeshSetReader::FindInstance(const inp_Keyword& keyword, const inpS_MeshScope& scope,
                                      cow_String& instance) {
  const inp_Item* item = keyword.Find("instance");
  if (!item) return true;
  instance = item->AsString();
  cow_String fault;
  if (instance.empty())
    fault = "The name of the instance is missing.";
  else if (scope.kind != inpS_MeshScope::Kind::Root)
    fault = "Instance parameter cannot be used at the part instance level.";
  else if (m_scopes.FindInstance(instance))
    return true;
  else
    fault = "Instance " + instance + " is not defined.";
  m_messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "instance", fault + " The set has nothing of this keyword."));
  return false;
}
