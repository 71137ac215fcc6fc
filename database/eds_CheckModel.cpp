#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "database/eds_CheckLinks.h"
#include "database/eds_CheckRecords.h"
#include "database/eds_CheckSteps.h"
#include "database/eds_CheckTexts.h"
#include "database/eds_Exception.h"
#include "database/eds_ModelReader.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <map>
#include <set>

// The check of a whole file: what the engine can say of its pages, and what we know of the content.

namespace {

class Checker {
public:
  explicit Checker(const KvoObjDocument& document)
      : m_store(*document.ContextID().store), m_reader(document) {}

  eds_Faults Run() {
    Guarded([&] { CheckEngine(); });
    for (const eds_RecordKind kind : m_store.Kinds())
      Guarded([&] { CheckReferences(m_store.Rows(kind)); });
    Guarded([&] { CheckLinks(); });
    Guarded([&] { CheckLinkKeys(); });
    Guarded([&] { CheckSteps(); });
    ForEach(eds_RecordKind::Array, [&](int64_t id) { CheckArray(id); });
    ForEach(eds_RecordKind::CSet, [&](int64_t id) { m_store.CSet(id); });
    ForEach(eds_RecordKind::Instance, [&](int64_t id) { CheckInstance(id); });
    ForEach(eds_RecordKind::NodeBlock, [&](int64_t id) { CheckNodeBlock(id); });
    ForEach(eds_RecordKind::ElementBlock, [&](int64_t id) { CheckElementBlock(id); });
    ForEach(eds_RecordKind::LabelSpace, [&](int64_t id) { CheckLabelSpace(id); });
    ForEach(eds_RecordKind::Drawer, [&](int64_t id) { CheckDrawer(id); });
    ForEach(eds_RecordKind::PropertyTable, [&](int64_t id) { CheckPropertyTable(id); });
    ForEach(eds_RecordKind::SurfacePiece, [&](int64_t id) { CheckSurfacePiece(id); });
    Guarded([&] { CheckOrphans(); });
    return std::move(m_faults);
  }

  // What is known without the arrays' contents; ends at the first fault.
  eds_Faults RunRecords() {
    m_forReaders = true;
    for (const eds_RecordKind kind : m_store.Kinds()) CheckReferences(m_store.Rows(kind));
    CheckLinks();
    CheckSteps();
    ForAll(eds_RecordKind::Instance, [&](int64_t id) { CheckInstance(id); });
    ForAll(eds_RecordKind::NodeBlock, [&](int64_t id) { CheckNodeBlock(id); });
    ForAll(eds_RecordKind::ElementBlock, [&](int64_t id) { CheckElementLength(id); });
    ForAll(eds_RecordKind::LabelSpace, [&](int64_t id) { CheckLabelSpace(id); });
    ForAll(eds_RecordKind::Drawer, [&](int64_t id) { CheckDrawer(id); });
    ForAll(eds_RecordKind::PropertyTable, [&](int64_t id) { CheckPropertyTable(id); });
    ForAll(eds_RecordKind::SurfacePiece, [&](int64_t id) { CheckSurfacePiece(id); });
    ForAll(eds_RecordKind::Array, [&](int64_t id) { CheckArraySize(id); });
    ForAll(eds_RecordKind::Collection, [&](int64_t id) { CheckSpace(id); });
    return std::move(m_faults);
  }

private:
  static constexpr size_t mostFaults = 100; // of one damage there may be millions

  void Fault(const cow_String& text) {
    if (m_faults.size() < mostFaults) m_faults.push_back(text);
  }

  // Reading damaged data throws; the rest is checked all the same.
  template <class Check> void Guarded(Check check) {
    try {
      check();
    } catch (const eds_DamagedFileException& fault) {
      Fault(fault.what());
    } catch (const eds_EngineException& fault) {
      Fault(fault.what());
    }
  }

  template <class Check> void ForEach(eds_RecordKind kind, Check check) {
    std::vector<int64_t> ids;
    Guarded([&] { ids = m_reader.RecordIDs(kind); });
    for (int64_t id : ids) Guarded([&] { check(id); });
  }

  template <class Check> void ForAll(eds_RecordKind kind, Check check) {
    const std::vector<int64_t> ids = m_reader.RecordIDs(kind);
    for (auto id = ids.begin(); id != ids.end() && m_faults.empty(); ++id) check(*id);
  }

  cow_String Name(eds_RecordKind kind, int64_t id) const { return m_reader.Describe({kind, id}); }

  void CheckEngine() {
    eds_Statement rows(m_store.Engine(), "PRAGMA integrity_check(20)");
    while (rows.Step())
      if (rows.Text(0) != "ok") Fault(cow_String(rows.Text(0)));
    utl_stopIfAsked();                           // what was not read then is no fault of the file
    if (m_store.Meta("finished") != "1") return; // one that died may leave a page behind its last
    if (const int64_t more = eds_bytesBehindPages(m_store.Engine()); more > 0)
      Fault("behind the last page stand " + std::to_string(more) + " bytes that are of none");
  }

  void CheckReferences(const eds_RowTable& rows) {
    const eds_RecordInfo& info = rows.Info();
    for (int64_t id = 1; id <= rows.LastID(); ++id) {
      if (!rows.Has(id)) continue;
      for (size_t i = 0; i < info.fields.size(); ++i) {
        const int field = static_cast<int>(i);
        if (rows.IsNull(id, field)) continue;
        CheckField(rows, id, field);
      }
    }
  }

  void CheckField(const eds_RowTable& rows, int64_t id, int field) {
    const eds_FieldInfo& info = rows.Field(field);
    const auto fault = [&](const cow_String& what) {
      Fault(Name(rows.Info().kind, id) + ", " + cow_String(info.column) + ": " + what);
    };
    switch (info.type) {
    case eds_FieldType::Symbol: {
      const int64_t symbol = rows.Int(id, field);
      if (symbol >= static_cast<int64_t>(eds_schemaSymbols(info.vocabulary).size()))
        fault("no symbol " + std::to_string(symbol));
      break;
    }
    case eds_FieldType::Text:
      if (const cow_String what = TextFault(rows, id, field); !what.empty()) fault(what);
      break;
    case eds_FieldType::Ref:
    case eds_FieldType::AnyRef:
      if (const eds_ObjectID target = rows.Reference(id, field); !m_store.Exists(target))
        fault(m_reader.Describe(target));
      break;
    default:
      break;
    }
  }

  static cow_String TextFault(const eds_RowTable& rows, int64_t id, int field) {
    const eds_RecordKind kind = rows.Info().kind;
    eds_KeptPlace place;
    if (kind == eds_RecordKind::VerbatimKeyword) {
      constexpr int steps = 29; // the last of the blocks in which a deck is written
      place.keyword = rows.Text(id, eds_VerbatimKeyword_Keyword);
      place.isAmongSteps = rows.Int(id, eds_VerbatimKeyword_Block) == steps &&
                           rows.Reference(id, eds_VerbatimKeyword_Owner).kind ==
                               static_cast<uint16_t>(eds_RecordKind::Model);
    }
    return eds_textFault(kind, rows.Field(field), rows.Text(id, field), place);
  }

  void CheckLinks() {
    eds_checkLinks(m_store, [this](const cow_String& fault) { Fault(fault); });
  }

  void CheckSteps() {
    eds_checkSteps(m_store, [this](const cow_String& fault) { Fault(fault); });
  }

  void CheckLinkKeys() {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::Link);
    std::set<std::pair<std::pair<uint64_t, int64_t>, std::string>> keys;
    for (int64_t id = 1; id <= rows.LastID(); ++id) {
      if (!rows.Has(id)) continue;
      const int64_t member = rows.Int(id, eds_Link_Member);
      const eds_MemberInfo* info = member > 0 && member < 0xffff
                                       ? eds_schemaMember(static_cast<eds_Member>(member))
                                       : nullptr;
      if (info == nullptr) continue; // told already
      std::string key;
      if (info->shape == eds_MemberShape::TextMap) key = rows.Text(id, eds_Link_TextKey);
      if (info->shape == eds_MemberShape::IntMap)
        key = std::to_string(rows.Int(id, eds_Link_IntKey));
      if (info->shape == eds_MemberShape::List || info->shape == eds_MemberShape::Set) continue;
      const uint64_t owner = rows.Reference(id, eds_Link_Owner).Packed();
      if (!keys.insert({{owner, member}, key}).second)
        Fault("link " + std::to_string(id) + ": a second one to '" + key + "'");
    }
  }

  void CheckArray(int64_t id) {
    eds_ArrayReader reader = m_reader.Array(id);
    for (int64_t chunk = 0; chunk < reader.ChunkCount(); ++chunk)
      Guarded([&] { reader.ChunkBytes(chunk); });
  }

  // Its chunks lie in the file as they are.
  void CheckArraySize(int64_t id) {
    if (m_fileBytes < 0)
      m_fileBytes = m_store.Engine().QueryInt("PRAGMA page_count") *
                    m_store.Engine().QueryInt("PRAGMA page_size");
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::Array);
    const int64_t count = rows.Int(id, eds_Array_Count);
    const int64_t width = rows.Int(id, eds_Array_Width);
    if (count < 0 || width < 1 || count > m_fileBytes / width)
      Fault(Name(eds_RecordKind::Array, id) + ": is longer than the file");
  }

  // The members of a collection are in the mesh, or few.
  void CheckSpace(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::Collection);
    if (m_mostMembers < 0) m_mostMembers = MostMembers();
    const int64_t space = rows.Int(id, eds_Collection_Space);
    if (space < 0 || space > m_mostMembers)
      Fault(Name(eds_RecordKind::Collection, id) + ": its size");
  }

  int64_t MostMembers() {
    int64_t members = int64_t{1} << 16;
    const auto add = [&](eds_RecordKind kind, int field) {
      const eds_RowTable& rows = m_store.Rows(kind);
      for (int64_t id = 1; id <= rows.LastID(); ++id)
        if (rows.Has(id)) members += rows.Int(id, field);
    };
    add(eds_RecordKind::NodeBlock, eds_NodeBlock_Count);
    add(eds_RecordKind::ElementBlock, eds_ElementBlock_Count);
    add(eds_RecordKind::Array, eds_Array_Count);
    return members;
  }

  // An array that a record refers to must hold what the record says of it.
  void CheckLength(const cow_String& name, const eds_RowTable& rows, int64_t id, int field,
                   eds_ValueType type, int64_t width, int64_t count) {
    const eds_ObjectID target = rows.Reference(id, field);
    if (target.IsNull() || !m_store.Exists(target)) return;
    const eds_RowTable& arrays = m_store.Rows(eds_RecordKind::Array);
    const bool fits = arrays.Int(target.id, eds_Array_ValueType) == static_cast<int64_t>(type) &&
                      arrays.Int(target.id, eds_Array_Width) == width &&
                      arrays.Int(target.id, eds_Array_Count) == count;
    if (!fits) Fault(name + ", " + cow_String(rows.Field(field).column) + ": does not fit");
  }

  int64_t ArrayCount(const eds_RowTable& rows, int64_t id, int field) {
    const eds_ObjectID target = rows.Reference(id, field);
    if (target.IsNull() || !m_store.Exists(target)) return 0;
    return m_store.Rows(eds_RecordKind::Array).Int(target.id, eds_Array_Count);
  }

  int64_t SizeOf(eds_ObjectID cset) { return m_store.Exists(cset) ? m_store.CSetSize(cset.id) : 0; }

  // Ordinals are 32-bit numbers; a run that is not in the flat mesh begins at -1 there.
  static bool IsRun(int64_t first, int64_t count, int64_t lowest = 0) {
    return first >= lowest && count >= 0 && first <= INT32_MAX && count <= INT32_MAX - first;
  }

  void CheckInstance(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::Instance);
    const bool fits =
        IsRun(rows.Int(id, eds_Instance_FirstNode), rows.Int(id, eds_Instance_NodeCount), -1) &&
        IsRun(rows.Int(id, eds_Instance_FirstElement), rows.Int(id, eds_Instance_ElementCount), -1);
    if (!fits) Fault(Name(eds_RecordKind::Instance, id) + ": its place in the mesh");
  }

  // A run of nodes (kind 0) or elements (1) must have labels with its owner.
  void CheckRun(const cow_String& name, eds_ObjectID owner, int kind, int64_t first, int64_t count,
                int64_t flatFirst) {
    if (!IsRun(first, count) || !IsRun(flatFirst, count, -1)) return Fault(name + ": its extent");
    if (m_forReaders && count > 0 && first + count > LabelsOf(owner, kind))
      Fault(name + ": has no labels");
  }

  int64_t LabelsOf(eds_ObjectID owner, int kind) {
    if (m_labelsOf.empty()) {
      const eds_RowTable& rows = m_store.Rows(eds_RecordKind::LabelSpace);
      for (int64_t id = 1; id <= rows.LastID(); ++id) {
        if (!rows.Has(id)) continue;
        m_labelsOf[{rows.Reference(id, eds_LabelSpace_Owner).Packed(),
                    rows.Int(id, eds_LabelSpace_Kind)}] = rows.Int(id, eds_LabelSpace_Count);
      }
    }
    const auto found = m_labelsOf.find({owner.Packed(), kind});
    return found != m_labelsOf.end() ? found->second : 0;
  }

  void CheckNodeBlock(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::NodeBlock);
    const cow_String name = Name(eds_RecordKind::NodeBlock, id);
    const int64_t count = rows.Int(id, eds_NodeBlock_Count);
    const int64_t generated = rows.Int(id, eds_NodeBlock_Generated);
    CheckRun(name, rows.Reference(id, eds_NodeBlock_Owner), 0, rows.Int(id, eds_NodeBlock_First),
             count, rows.Int(id, eds_NodeBlock_FlatFirst));
    if (generated < 0 || generated > count) Fault(name + ": its generated nodes");
    if (count > 0 && rows.IsNull(id, eds_NodeBlock_Coordinates)) Fault(name + ": no coordinates");
    CheckLength(name, rows, id, eds_NodeBlock_Coordinates, eds_ValueType::Double, 3, count);
    if (ArrayCount(rows, id, eds_NodeBlock_LocalCoordinates) > 0)
      CheckLength(name, rows, id, eds_NodeBlock_LocalCoordinates, eds_ValueType::Double, 3, count);
    const int64_t normals = ArrayCount(rows, id, eds_NodeBlock_NormalOrdinals);
    CheckLength(name, rows, id, eds_NodeBlock_NormalOrdinals, eds_ValueType::Int32, 1, normals);
    if (normals > 0 && rows.IsNull(id, eds_NodeBlock_Normals)) Fault(name + ": no normals");
    CheckLength(name, rows, id, eds_NodeBlock_LocalNormals, eds_ValueType::Double, 3, normals);
    CheckLength(name, rows, id, eds_NodeBlock_Normals, eds_ValueType::Double, 3, normals);
    if (normals > count) Fault(name + ": more normals than nodes");
  }

  void CheckElementLength(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::ElementBlock);
    const cow_String name = Name(eds_RecordKind::ElementBlock, id);
    const int64_t count = rows.Int(id, eds_ElementBlock_Count);
    const int64_t width = rows.Int(id, eds_ElementBlock_Width);
    CheckRun(name, rows.Reference(id, eds_ElementBlock_Owner), 1,
             rows.Int(id, eds_ElementBlock_First), count, rows.Int(id, eds_ElementBlock_FlatFirst));
    if (width < 0 || width > INT32_MAX) Fault(name + ": its width");
    if (!IsRun(rows.Int(id, eds_ElementBlock_NodeBase), 0)) Fault(name + ": its first node");
    if (m_forReaders && rows.IsNull(id, eds_ElementBlock_Spec)) Fault(name + ": no element type");
    if (count > 0 && rows.IsNull(id, eds_ElementBlock_Connectivity)) Fault(name + ": no nodes");
    CheckLength(name, rows, id, eds_ElementBlock_Connectivity, eds_ValueType::Int32, width, count);
  }

  // What the entries of a block may be, as the writer makes them: nodes of its own owner (in the
  // assembly, of the whole mesh), and no node only where its type can do without one.
  struct Connectivity {
    int64_t first = 0;
    int64_t end = 0;
    int64_t least = 0; // nodes that an element must have, its first ones
    int64_t width = 0;
  };

  Connectivity ConnectivityOf(const eds_RowTable& rows, int64_t id) {
    const eds_ObjectID owner = rows.Reference(id, eds_ElementBlock_Owner);
    Connectivity all;
    all.width = rows.Int(id, eds_ElementBlock_Width);
    all.end = OwnNodes(owner);
    if (rows.Int(id, eds_ElementBlock_FlatFirst) >= 0) {
      const int64_t base = rows.Int(id, eds_ElementBlock_NodeBase);
      all.end = FlatNodes() - base;
      const eds_RowTable& instances = m_store.Rows(eds_RecordKind::Instance);
      if (owner.RecordKind() == eds_RecordKind::Instance && instances.Has(owner.id)) {
        const int64_t first = instances.Int(owner.id, eds_Instance_FirstNode);
        const int64_t count = instances.Int(owner.id, eds_Instance_NodeCount);
        if (!IsRun(first, count, -1)) return all; // told
        all.first = std::max<int64_t>(0, first - base);
        all.end = first - base + count;
      }
    }
    const eds_RowTable& specs = m_store.Rows(eds_RecordKind::ElementSpec);
    const int64_t spec = rows.Reference(id, eds_ElementBlock_Spec).id;
    if (!specs.Has(spec)) return all;
    // Any node of a connector may be the ground.
    if (!specs.Text(spec, eds_ElementSpec_Name).starts_with("CONN"))
      all.least = specs.Int(spec, eds_ElementSpec_MinNodes);
    return all;
  }

  // Of the elements of one piece of the array, the first is `element` of its block.
  void CheckNodes(const cow_String& name, const Connectivity& all, std::span<const int32_t> nodes,
                  int64_t element) {
    const auto [low, high] = std::ranges::minmax(nodes); // nearly always that is all
    if (low >= all.first && high < all.end) return;
    const auto width = static_cast<size_t>(all.width);
    for (; !nodes.empty(); nodes = nodes.subspan(width), ++element) {
      for (size_t place = 0; place < width; ++place) {
        const int32_t node = nodes[place];
        const bool mayLack = static_cast<int64_t>(place) >= all.least;
        if (node == -1 ? mayLack : node >= all.first && node < all.end) continue;
        const cow_String where = name + ": its element " + std::to_string(element);
        if (node == -1) return Fault(where + " lacks its node " + std::to_string(place + 1));
        return Fault(where + " refers to node " + std::to_string(node) + ", not one of " +
                     std::to_string(all.first) + " to " + std::to_string(all.end - 1));
      }
    }
  }

  void CheckElementBlock(int64_t id) {
    CheckElementLength(id);
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::ElementBlock);
    const cow_String name = Name(eds_RecordKind::ElementBlock, id);
    const eds_ObjectID array = rows.Reference(id, eds_ElementBlock_Connectivity);
    if (array.IsNull() || !m_store.Exists(array)) return;           // the latter is told
    if (!IsRun(rows.Int(id, eds_ElementBlock_NodeBase), 0)) return; // told
    const Connectivity all = ConnectivityOf(rows, id);
    eds_ArrayReader reader = m_reader.Array(array.id);
    if (all.width < 1 || reader.Width() != all.width) return; // told, too
    if (all.width < all.least)
      return Fault(name + ": its elements have " + std::to_string(all.width) +
                   " nodes, their type has " + std::to_string(all.least));
    int64_t element = 0;
    for (int64_t chunk = 0; chunk < reader.ChunkCount(); ++chunk) {
      const std::span<const int32_t> nodes = reader.Chunk<int32_t>(chunk);
      if (!nodes.empty()) CheckNodes(name, all, nodes, element);
      element += static_cast<int64_t>(nodes.size()) / all.width;
    }
  }

  int64_t FlatNodes() {
    const int64_t collection = m_store.Collection(eds_CollectionKind::Node, false);
    return collection != 0 ? m_store.Space(collection) : 0;
  }

  int64_t OwnNodes(eds_ObjectID owner) {
    if (m_nodesOf.empty()) {
      const eds_RowTable& rows = m_store.Rows(eds_RecordKind::NodeBlock);
      for (int64_t id = 1; id <= rows.LastID(); ++id) {
        if (!rows.Has(id)) continue;
        int64_t& nodes = m_nodesOf[rows.Reference(id, eds_NodeBlock_Owner).Packed()];
        nodes =
            std::max(nodes, rows.Int(id, eds_NodeBlock_First) + rows.Int(id, eds_NodeBlock_Count));
      }
    }
    return m_nodesOf[owner.Packed()];
  }

  void CheckLabelSpace(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::LabelSpace);
    CheckLength(Name(eds_RecordKind::LabelSpace, id), rows, id, eds_LabelSpace_Labels,
                eds_ValueType::Int32, 1, rows.Int(id, eds_LabelSpace_Count));
  }

  void CheckDrawer(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::Drawer);
    const int64_t distribution = rows.Reference(id, eds_Drawer_Distribution).id;
    const eds_RowTable& all = m_store.Rows(eds_RecordKind::Distribution);
    if (!all.Has(distribution)) return; // told already
    const auto type = static_cast<eds_ValueType>(all.Int(distribution, eds_Distribution_ValueType));
    CheckLength(Name(eds_RecordKind::Drawer, id), rows, id, eds_Drawer_Array, type,
                all.Int(distribution, eds_Distribution_Values),
                SizeOf(rows.Reference(id, eds_Drawer_Over)));
  }

  void CheckPropertyTable(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::PropertyTable);
    const cow_String name = Name(eds_RecordKind::PropertyTable, id);
    const int64_t count = rows.Int(id, eds_PropertyTable_Rows);
    const int64_t width = rows.Int(id, eds_PropertyTable_Columns);
    const int64_t variables = rows.Int(id, eds_PropertyTable_FieldVariables);
    const int64_t temperature = rows.Int(id, eds_PropertyTable_TemperatureDependent);
    if (variables < 0 || width > INT32_MAX || variables > width - temperature)
      Fault(name + ": its columns");
    CheckLength(name, rows, id, eds_PropertyTable_Values, eds_ValueType::Double, width, count);
    if (!rows.Reference(id, eds_PropertyTable_Values).IsNull()) return;
    const auto bytes = static_cast<int64_t>(rows.Text(id, eds_PropertyTable_FewValues).size());
    const bool fits = width > 0
                          ? bytes % 8 == 0 && bytes / 8 % width == 0 && bytes / 8 / width == count
                          : bytes == 0 && count == 0;
    if (!fits) Fault(name + ": its values do not fit its rows");
  }

  void CheckSurfacePiece(int64_t id) {
    const eds_RowTable& rows = m_store.Rows(eds_RecordKind::SurfacePiece);
    CheckLength(Name(eds_RecordKind::SurfacePiece, id), rows, id, eds_SurfacePiece_Areas,
                eds_ValueType::Double, 1, SizeOf(rows.Reference(id, eds_SurfacePiece_Members)));
  }

  void CheckOrphans() {
    const eds_RowTable& arrays = m_store.Rows(eds_RecordKind::Array);
    int64_t orphans = 0;
    eds_Statement chunks(m_store.Engine(), "SELECT id, array, number FROM chunk");
    while (chunks.Step()) {
      const int64_t array = chunks.Int(1), number = chunks.Int(2);
      const bool isIts = arrays.Has(array) && number >= 0 && number < eds_mostChunks &&
                         chunks.Int(0) == array * eds_mostChunks + number;
      if (!isIts) ++orphans;
    }
    if (orphans > 0) Fault(std::to_string(orphans) + " chunks belong to no array");
  }

  eds_Store& m_store;
  eds_ModelReader m_reader;
  eds_Faults m_faults;
  bool m_forReaders = false; // a mesh without labels and types is sound, but nothing to show
  int64_t m_fileBytes = -1;
  int64_t m_mostMembers = -1;
  std::unordered_map<uint64_t, int64_t> m_nodesOf;
  std::map<std::pair<uint64_t, int64_t>, int64_t> m_labelsOf; // by owner and kind: their number
};

} // namespace

eds_Faults eds_checkModel(const KvoObjDocument& document) {
  return Checker(document).Run();
}

void eds_checkRecords(const KvoObjDocument& document) {
  const eds_Faults faults = Checker(document).RunRecords();
  if (faults.empty()) return;
  throw eds_DamagedFileException("\"" + utl_pathText(document.Path()) +
                                 "\" is damaged: " + faults.front());
}
