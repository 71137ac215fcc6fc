#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_StepVisitor.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

// Keywords of steps that keep the name of another thing as a word, for it may stand behind them, in
// any step, and as text. What is nowhere is told.

namespace {

struct Use {
  inp_KeywordEnm keyword;
  const char* parameter; // null: fields of the lines
  const char* referable;
  int columns = 1; // of a line, that may hold a name
};
constexpr int kAll = 1 << 10;
constexpr Use kUses[] = {
    {inp_KwDirectCyclic, "timepoints", "time_points"},
    {inp_KwCorrelation, "psd", "psd"},
    {inp_KwAdaptiveMesh, "controls", "mesh_controls"},
    {inp_KwContactControls, "main", "surface"},
    {inp_KwContactControls, "secondary", "surface"},
    {inp_KwContactControls, "master", "surface"},
    {inp_KwContactControls, "slave", "surface"},
    {inp_KwResponseSpectrum, nullptr, "spectrum"},
    {inp_KwCompositeModalDamping, nullptr, "material"},
    {inp_KwContourIntegral, nullptr, "nset", kAll},
};

const eds_Referable& referableOf(std::string_view word) {
  return *std::ranges::find(eds_referables(), word, &eds_Referable::word);
}

} // namespace

bool inpS_StepVisitor::IsThere(const eds_Referable& referable, const cow_String& asWritten) {
  if (!Names().Find(referable, asWritten).set.IsNull()) return true;
  if (referable.IsScoped()) return IsMeshLeftOut();
  const inp_KeywordEnm definer = inpS_FormTable::Instance().DefinerOf(referable);
  return definer != inp_NullKeyword && Inventory().Names(definer, inp_Utils::Fold(asWritten));
}

// Of regions whose elements may crack.
void inpS_StepVisitor::CheckEnrichment(const inp_Keyword& keyword) {
  static const int field = eds_formField(eds_FormKind::Enrichment, "name");
  const inp_Item* name = keyword.Find("name");
  if (!name || Inventory().Names(inp_KwEnrichment, name->AsString())) return;
  const KvoSimContext context = Inventory().GetDocument().Context();
  for (const KvoSimPosition& one : context.GetRecords(eds_FormKind::Enrichment))
    if (inp_Utils::Fold(one.DataRecord().ReturnString(field)) == name->AsString()) return;
  AddWarning(inp_Utils::MessageAtParameter(
      keyword, "name", "*ENRICHMENT \"" + name->AsString() + "\" has not been defined."));
}

void inpS_StepVisitor::CheckNames(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_KwEnrichmentActivation) return CheckEnrichment(keyword);
  const inp_DataArray& data = keyword.Data();
  for (const Use& use : kUses) {
    if (use.keyword != keyword.Kind()) continue;
    const eds_Referable& referable = referableOf(use.referable);
    const inp_Item* item = use.parameter ? keyword.Find(use.parameter) : nullptr;
    if (item && !IsThere(referable, item->Verbatim()))
      AddWarning(inp_Utils::MessageAtParameter(keyword, use.parameter,
                                               Names().TextOfMissing(referable, item->AsString())));
    for (long long row = 0; !use.parameter && row < data.Rows(); ++row) {
      for (int col = 0; col < std::min(data.Cols(row), use.columns); ++col) {
        if (data.Type(row, col) != inp_FieldType::String) continue;
        const cow_String name = data.AsStringVerbatim(row, col);
        if (!IsThere(referable, name))
          AddWarning(inp_Utils::MessageAtField(
              keyword, row, col, Names().TextOfMissing(referable, inp_Utils::Fold(name))));
      }
    }
  }
}
