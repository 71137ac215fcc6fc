#include "inpS/writer/inpS_Sim2Inp.h"
#include "base/bcu_ResourceMonitor.h"
#include "base/utl_Controls.h"
#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_Blocks.h"
#include "inpS/forms/inpS_FormPrinter.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/framework/inpS_MemoryDoor.h"
#include "inpS/history/inpS_History.h"
#include "inpS/writer/inpS_AmplitudePrinter.h"
#include "inpS/writer/inpS_ColumnPrinter.h"
#include "inpS/writer/inpS_ExcitationPrinter.h"
#include "inpS/writer/inpS_MaterialPrinter.h"
#include "inpS/writer/inpS_MeshPrinter.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_RowLayout.h"
#include "inpS/writer/inpS_SetPrinter.h"
#include "inpS/writer/inpS_StepMarks.h"
#include "inpS/writer/inpS_SurfacePrinter.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <ostream>
#include <span>
#include <unordered_map>

namespace {

constexpr const char* kMarks = "Sim2Inp-";
constexpr int kStepsBlock = 29;

// A keyword kept as text, ready to be put back.
struct Kept {
  int block;
  int position;
  KvoSimPosition record;
  KvoSimPosition behind;
};

} // namespace

struct inpS_Sim2Inp::Impl {
  using Printer = void (Impl::*)(const inpS_DeckScope&);
  static Printer PrinterOf(int block); // null: there is none

  Impl(const KvoObjDocument& document, int threadCount, bool verboseFlag, const cow_String& title,
       const char* comment, aio_ostream& stream)
      : doc(document), threads(threadCount), verbose(verboseFlag), name(title),
        remark(comment ? comment : ""), diagnostics(stream) {}

  void LoadTables();
  void LoadElemSpec2TypeMap();
  void LoadNodeLabels() { labels->nodes.Read(); }
  void LoadElementLabels() { labels->elements.Read(); }
  void LoadKept();
  inpS_DeckScope ScopeOf(const KvoSimPosition& owner) const;
  void PrintScope(const inpS_DeckScope& scope, int from, int to);
  void PrintWithin(const inpS_DeckScope& scope);
  void SortKept(const inpS_DeckScope& scope, const inpS_Block& block, std::span<Kept> texts) const;
  void PrintKept(const inpS_DeckScope& scope, const inpS_Block& block);
  inpS_FormPrinting Printing(const inpS_DeckScope& scope);
  void PrintStep(const KvoSimPosition& step, const inpS_FormPrinting& printing,
                 const inpS_DeckScope& scope);
  void PrintParts();
  void PrintAssembly();
  void PrintInstance(const KvoSimPosition& instance);
  void PrintPlacement(const KvoSimDataRecord& record);
  void PrintUnused(const KvoSimPosition& owner, long long row);

  // A model whose conversion was cut off at its very start has none.
  bool HasMesh() const { return !labels->mesh.IsNull(); }
  bool IsEmpty() const;
  void PrintHeading(const inpS_DeckScope& scope);
  void PrintNodes(const inpS_DeckScope& scope) {
    if (HasMesh()) inpS_MeshPrinter(*labels, *out).PrintNodes(scope);
  }
  void PrintNsets(const inpS_DeckScope& scope) {
    if (HasMesh()) inpS_SetPrinter(*labels, parts, *out).PrintNsets(scope);
  }
  void PrintElements(const inpS_DeckScope& scope) {
    if (HasMesh()) inpS_MeshPrinter(*labels, *out).PrintElements(scope);
  }
  void PrintElsets(const inpS_DeckScope& scope) {
    if (HasMesh()) inpS_SetPrinter(*labels, parts, *out).PrintElsets(scope);
  }
  void PrintSurfaces(const inpS_DeckScope& scope) {
    inpS_SurfacePrinter(*labels, parts, *out).PrintSurfaces(scope);
  }
  inpS_MaterialPrinter Materials() {
    return {*out, parts, [this](const KvoSimPosition& owner, const KvoSimPosition& behind) {
              PrintKeptOf(owner, behind);
            }};
  }
  // These belong to the model: parts and instances have none.
  void PrintPhysicalConstants(const inpS_DeckScope& scope) {
    if (IsModel(scope)) Materials().PrintPhysicalConstants(doc.GetModel());
  }
  void PrintAmplitudes(const inpS_DeckScope& scope) {
    if (IsModel(scope)) inpS_printAmplitudes(*out, doc.GetModel(), parts, Printing(scope));
  }
  void PrintMaterials(const inpS_DeckScope& scope) {
    if (IsModel(scope)) Materials().PrintMaterials(doc.GetModel());
  }
  void PrintGasketBehaviors(const inpS_DeckScope& scope) {
    if (IsModel(scope)) Materials().PrintGasketBehaviors(doc.GetModel());
  }
  void PrintExcitations(const inpS_DeckScope& scope) {
    if (IsModel(scope)) excitations->PrintBeforeSteps(*out);
  }
  bool IsModel(const inpS_DeckScope& scope) const { return scope.owner.IsA(eds_RecordKind::Model); }
  void PrintKeptOf(const KvoSimPosition& owner, const KvoSimPosition& behind = {});

  KvoObjDocument doc;
  int threads;
  bool verbose;
  cow_String name;
  cow_String remark;
  aio_ostream& diagnostics;
  utl_Stream* out = nullptr;
  std::unique_ptr<inpS_DeckLabels> labels;
  cow_Map<unsigned long long, std::size_t> printed; // how many of what an object keeps
  inpS_KeptParts parts;
  std::unique_ptr<inpS_ExcitationPrinter> excitations;
  inpS_StepMarks stepMarks;
  cow_Map<unsigned long long, cow_List<Kept>> kept; // by owner, sorted by block and position
};

using Impl = inpS_Sim2Inp::Impl;

// The blocks that are more than forms and what was kept as text.
Impl::Printer Impl::PrinterOf(int block) {
  switch (block) {
  case 1:
    return &Impl::PrintHeading;
  case 3:
    return &Impl::PrintNodes;
  case 4:
    return &Impl::PrintNsets;
  case 5:
    return &Impl::PrintElements;
  case 6:
    return &Impl::PrintElsets;
  case 10:
    return &Impl::PrintSurfaces;
  case 13:
    return &Impl::PrintAmplitudes;
  case 14:
    return &Impl::PrintPhysicalConstants;
  case 16:
    return &Impl::PrintMaterials;
  case 17:
    return &Impl::PrintGasketBehaviors;
  case 27:
    return &Impl::PrintExcitations;
  default:
    return nullptr;
  }
}

inpS_Sim2Inp::inpS_Sim2Inp(const KvoObjDocument& document, int threads, bool verbose,
                           const cow_String& name, const char* comment, aio_ostream& diagnostics)
    : m_impl(std::make_unique<Impl>(document, threads, verbose, name, comment, diagnostics)) {}

inpS_Sim2Inp::~inpS_Sim2Inp() = default;

void inpS_Sim2Inp::Print(utl_Stream& out) try {
  Impl& deck = *m_impl;
  if (deck.verbose) deck.diagnostics << "inpS_Sim2Inp::Print\n";
  const bcu_MarkScope whole(kMarks, "Print");
  deck.out = &out;
  deck.LoadTables();
  if (!deck.name.empty()) out << "** " << deck.name << '\n';
  if (!deck.remark.empty()) out << "** " << deck.remark << '\n';

  const KvoObjModel model = deck.doc.GetModel();
  const bool hasAssembly = !model.GetAssembly().IsNull();
  inpS_DeckScope root = deck.ScopeOf(model.Position());
  deck.PrintScope(root, 1, 1);
  if (!model.Parts().empty()) deck.PrintParts();
  if (hasAssembly) deck.PrintAssembly();
  deck.PrintScope(root, 2, kStepsBlock);
} catch (...) {
  inpS_passOn();
}

// ---- what is loaded before any block

void Impl::LoadTables() {
  {
    const bcu_MarkScope mark(kMarks, "LoadElemSpec");
    labels = std::make_unique<inpS_DeckLabels>(
        inpS_DeckLabels{doc.GetMesh(), KvoObjLabeler(doc, 0), KvoObjLabeler(doc, 1), {}, {}, {}});
    LoadElemSpec2TypeMap();
    LoadKept();
  }
  {
    const bcu_MarkScope mark(kMarks, "LoadNodesMap");
    LoadNodeLabels();
  }
  {
    const bcu_MarkScope mark(kMarks, "LoadElemsMap");
    LoadElementLabels();
  }
  const auto instancesOf = [](const KvoObjLabeler& labeler) {
    cow_List<cow_String> names;
    for (const KvoSimPosition& owner : labeler.Occurrences())
      names.push_back(owner.IsA(eds_RecordKind::Instance)
                          ? inpS_quoted(owner.DataRecord().ReturnString(eds_Instance_Name))
                          : cow_String());
    return names;
  };
  labels->nodeInstances = instancesOf(labels->nodes);
  labels->elementInstances = instancesOf(labels->elements);
  excitations = std::make_unique<inpS_ExcitationPrinter>(doc, *labels, parts);
}

void Impl::LoadElemSpec2TypeMap() {
  for (const KvoSimPosition& spec : doc.Context().GetRecords(eds_RecordKind::ElementSpec))
    labels->elementTypes[spec.Object().Packed()] =
        spec.DataRecord().ReturnString(eds_ElementSpec_Name);
}

void Impl::LoadKept() {
  parts = inpS_KeptParts(doc.Context());
  for (const KvoSimPosition& position : doc.Context().GetRecords(eds_RecordKind::VerbatimKeyword)) {
    const KvoSimDataRecord record = position.DataRecord();
    const auto owner = record.GetReference(eds_VerbatimKeyword_Owner).Object().Packed();
    kept[owner].push_back({record.GetInt(eds_VerbatimKeyword_Block),
                           record.GetInt(eds_VerbatimKeyword_Position), position,
                           record.GetReference(eds_VerbatimKeyword_Behind)});
  }
  for (auto& [owner, list] : kept)
    std::stable_sort(list.begin(), list.end(), [](const Kept& a, const Kept& b) {
      return a.block != b.block ? a.block < b.block : a.position < b.position;
    });
}

inpS_DeckScope Impl::ScopeOf(const KvoSimPosition& owner) const {
  inpS_DeckScope scope;
  scope.owner = owner;
  scope.nodes = labels->nodes.FindOccurrence(owner);
  scope.elements = labels->elements.FindOccurrence(owner);
  scope.isPart = owner.IsA(eds_RecordKind::Part);
  if (!owner.IsA(eds_RecordKind::Instance)) return scope;
  const KvoSimDataRecord record = owner.DataRecord();
  scope.flatNode = record.GetInt64(eds_Instance_FirstNode);
  scope.flatElement = record.GetInt64(eds_Instance_FirstElement);
  const KvoSimPosition part = record.GetReference(eds_Instance_Part);
  if (part.IsNull()) return scope;
  scope.partNodes = part.DataRecord().GetInt64(eds_Part_NodeCount);
  scope.partElements = part.DataRecord().GetInt64(eds_Part_ElementCount);
  return scope;
}

// ---- blocks

void Impl::PrintScope(const inpS_DeckScope& scope, int from, int to) {
  for (const inpS_Block& block : inpS_blockRows) {
    if (block.number < from || block.number > to) continue;
    std::unique_ptr<bcu_MarkScope> mark;
    if (block.mark) mark = std::make_unique<bcu_MarkScope>(kMarks, block.mark);
    if (verbose) diagnostics << "inpS_Sim2Inp::" << block.name << '\n';
    if (const Printer print = PrinterOf(block.number)) (this->*print)(scope);
    PrintKept(scope, block);
  }
}

// What lies within the model: all but its heading and its steps, and what strayed in from there.
void Impl::PrintWithin(const inpS_DeckScope& scope) {
  PrintKept(scope, inpS_block(1));
  PrintScope(scope, 2, kStepsBlock - 1);
  PrintKept(scope, inpS_block(kStepsBlock));
}

inpS_FormPrinting Impl::Printing(const inpS_DeckScope& scope) {
  return {parts,
          [this, &scope](const inpS_Form& form, const KvoSimPosition& columns) {
            inpS_printColumns(*out, *form.info, columns, *labels, scope);
          },
          [this](const inpS_Form& form, const KvoSimPosition& rows) {
            inpS_printRows(*out, form, rows);
          },
          [this](const KvoSimPosition& within, const KvoSimPosition& behind) {
            PrintKeptOf(within, behind);
          }};
}

// The texts of a block in the order of the records that they stand behind: a phase may have made
// those in another order than the deck's.
void Impl::SortKept(const inpS_DeckScope& scope, const inpS_Block& block,
                    std::span<Kept> texts) const {
  if (texts.empty() || !block.HasForms() || block.number == kStepsBlock) return;
  std::unordered_map<unsigned long long, std::size_t> places{{scope.owner.Object().Packed(), 0}};
  for (const eds_Member member : inpS_membersOf(block))
    for (const KvoSimPosition& record : scope.owner.GetVector(member))
      places.try_emplace(record.Object().Packed(), places.size());
  std::ranges::stable_sort(texts, {}, [&](const Kept& text) {
    const auto known = places.find(text.behind.Object().Packed());
    return known == places.end() ? places.size() : known->second;
  });
}

// The forms of a block, and the texts of it: each behind the form that it stood behind.
void Impl::PrintKept(const inpS_DeckScope& scope, const inpS_Block& block) {
  std::span<Kept> texts;
  if (const auto known = kept.find(scope.owner.Object().Packed()); known != kept.end())
    texts = {std::ranges::lower_bound(known->second, block.number, {}, &Kept::block),
             std::ranges::upper_bound(known->second, block.number, {}, &Kept::block)};
  SortKept(scope, block, texts);
  auto at = texts.begin();
  const auto printTexts = [&](const KvoSimPosition* behind) {
    for (; at != texts.end() && (!behind || at->behind == *behind); ++at)
      utl_printLines(*out, at->record.DataRecord().GetString(eds_VerbatimKeyword_Text));
  };
  printTexts(&scope.owner);
  if (block.HasForms()) {
    const inpS_FormPrinting printing = Printing(scope);
    for (const eds_Member member : inpS_membersOf(block)) {
      for (const KvoSimPosition& record : scope.owner.GetVector(member)) {
        if (record.IsA(eds_FormKind::Step))
          PrintStep(record, printing, scope);
        else
          inpS_printForm(*out, record, printing);
        printTexts(&record);
      }
    }
  }
  printTexts(nullptr);
}

// Its keywords in the order of the deck, whatever phase made them.
void Impl::PrintStep(const KvoSimPosition& step, const inpS_FormPrinting& printing,
                     const inpS_DeckScope& scope) {
  stepMarks.BeginStep();
  inpS_printFormLines(*out, step, printing);
  printing.texts(step, step);
  excitations->PrintStep(*out, step, {}, scope);
  for (const KvoSimPosition& record : inpS_keywordsInOrder(step)) {
    const inpS_Form* form = inpS_FormTable::Instance().Find(record.Object().RecordKind());
    if (form) stepMarks.Enter(inp_KeywordTable::Instance().Row(form->keyword)->name);
    inpS_printForm(*out, record, printing);
    printing.texts(step, record);
    excitations->PrintStep(*out, step, record, scope);
    if (record.IsA(eds_FormKind::LoadCase) || record.IsA(eds_FormKind::SubstructureLoadCase))
      excitations->PrintLoadCase(*out, step, record);
  }
  printing.texts(step, {});
  stepMarks.EndStep();
  *out << "*END STEP";
  PrintUnused(step, inpS_closingRow);
}

// What is kept with an object that is no scope of the deck: what stands behind one of its own, or
// all that has not been printed.
void Impl::PrintKeptOf(const KvoSimPosition& owner, const KvoSimPosition& behind) {
  const auto known = kept.find(owner.Object().Packed());
  if (known == kept.end()) return;
  const cow_List<Kept>& list = known->second;
  // They stand in the order of what they stand behind.
  for (std::size_t& next = printed[owner.Object().Packed()];
       next < list.size() && (behind.IsNull() || list[next].behind == behind); ++next) {
    const KvoSimDataRecord text = list[next].record.DataRecord();
    if (owner.IsA(eds_FormKind::Step)) stepMarks.Enter(text.GetString(eds_VerbatimKeyword_Keyword));
    utl_printLines(*out, text.GetString(eds_VerbatimKeyword_Text));
  }
}

// Whether the model has nothing but what every model has.
bool Impl::IsEmpty() const {
  const KvoSimPosition model = doc.GetModel().Position();
  return kept.empty() && (!HasMesh() || labels->mesh.NodeBlocks().empty()) &&
         std::ranges::none_of(eds_schemaMembers(), [&](const eds_MemberInfo& info) {
           const bool isEverywhere = info.member == eds_Member::Mesh ||
                                     info.member == eds_Member::Collections ||
                                     info.member == eds_Member::Annotation;
           return !isEverywhere && model.MemberCount(info.member) > 0;
         });
}

void Impl::PrintHeading(const inpS_DeckScope& scope) {
  const cow_String& parameters = parts.At(scope.owner, 0).parameters;
  // A deck holds one keyword at least.
  if (!scope.owner.HasAnnotation() && parameters.empty() && !IsEmpty()) return;
  const cow_String heading = scope.owner.GetAnnotation();
  *out << "*HEADING" << parameters << '\n';
  utl_printLines(*out, heading);
  if (!heading.empty() && heading.back() != '\n') *out << '\n';
}

void Impl::PrintParts() {
  for (const KvoSimPosition& part : doc.GetModel().Parts()) {
    *out << "*PART, NAME=" << inpS_quoted(part.DataRecord().ReturnString(eds_Part_Name));
    PrintUnused(part, 0);
    PrintWithin(ScopeOf(part));
    *out << "*END PART";
    PrintUnused(part, inpS_closingRow);
  }
}

void Impl::PrintAssembly() {
  const KvoSimPosition assembly = doc.GetModel().GetAssembly();
  const cow_String title = assembly.DataRecord().ReturnString(eds_Assembly_Name);
  *out << "*ASSEMBLY";
  if (!title.empty()) *out << ", NAME=" << inpS_quoted(title);
  PrintUnused(assembly, 0);
  for (const KvoSimPosition& instance : doc.GetModel().Occurences()) PrintInstance(instance);
  PrintWithin(ScopeOf(assembly));
  *out << "*END ASSEMBLY";
  PrintUnused(assembly, inpS_closingRow);
}

void Impl::PrintInstance(const KvoSimPosition& instance) {
  const KvoSimDataRecord record = instance.DataRecord();
  *out << "*INSTANCE, NAME=" << inpS_quoted(record.ReturnString(eds_Instance_Name));
  const KvoSimPosition part = record.GetReference(eds_Instance_Part);
  if (!part.IsNull())
    *out << ", PART=" << inpS_quoted(part.DataRecord().ReturnString(eds_Part_Name));
  const cow_String library = record.ReturnString(eds_Instance_Library);
  const cow_String source = record.ReturnString(eds_Instance_SourceInstance);
  if (!library.empty()) *out << ", LIBRARY=" << inpS_quoted(library);
  if (!source.empty()) *out << ", INSTANCE=" << inpS_quoted(source);
  PrintUnused(instance, 0);
  if (parts.At(instance, 0).lines.empty()) PrintPlacement(record);
  PrintWithin(ScopeOf(instance));
  *out << "*END INSTANCE";
  PrintUnused(instance, inpS_closingRow);
}

void Impl::PrintPlacement(const KvoSimDataRecord& record) {
  const bool rotated = record.GetBool(eds_Instance_RotationGiven);
  if (record.GetBool(eds_Instance_TranslationGiven) || rotated) {
    double values[7];
    for (int i = 0; i < 3; ++i) values[i] = record.GetDouble(eds_Instance_TranslationX + i);
    if (record.GetBool(eds_Instance_TranslationGiven)) inpS_printArray(*out, values, 3);
    *out << '\n';
    for (int i = 0; i < 7; ++i) values[i] = record.GetDouble(eds_Instance_RotationAX + i);
    if (rotated) {
      inpS_printArray(*out, values, 7);
      *out << '\n';
    }
  }
}

// The end of a keyword line, and what the keyword has beside what its record holds.
void Impl::PrintUnused(const KvoSimPosition& owner, long long row) {
  const inpS_KeptPart& part = parts.At(owner, row);
  *out << part.parameters << '\n' << part.lines;
}
