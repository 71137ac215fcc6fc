#include "inpS/history/inpS_LoadVisitor.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/history/inpS_LoadLines.h"
#include "inpS/history/inpS_NodalLines.h"
#include "parser/inp_Utils.h"

namespace {

// Of loads whose lines are right when their fields are.
class PlainLines : public inpS_LineCheck {
public:
  bool IsSound(const inp_ColumnPiece&, Words) override { return true; }
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView&) override { return {}; }
  bool IsErrorToRefuse() const override { return true; }
};

} // namespace

inpS_LoadVisitor::inpS_LoadVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                   const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : inpS_FormVisitor(inpS_Phase::Loads, nodes, elements, inventory, ledger),
      m_fluidSteps(inventory.IsCFD()) {}

// Decided here: a flux is given node by node where a routine of the user gives it, for each node
// one of its own; a magnitude for a label is a region of one node, and taken.
bool inpS_LoadVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form&) {
  if (keyword.Kind() == inp_KwCflux && keyword.HasParameter("user")) {
    AddError(
        inp_Utils::MessageAtParameter(keyword, "user", "Node by node heat flux is not supported"));
    return false;
  }
  if (keyword.Kind() != inp_KwCload || !keyword.HasParameter("type") ||
      !m_fluidSteps.Has(OpenStep()))
    return true;
  const cow_String type = keyword.StringOf("type", "");
  if (type == "FLOW") return true;
  AddError(inp_Utils::MessageAtParameter(
      keyword, "type",
      inp_Utils::Format("Unsupported *CLOAD type \"%s\" for flow step", type.c_str())));
  return false;
}

// A load that the analysis would go without.
bool inpS_LoadVisitor::IsErrorToLack(inp_KeywordEnm) const {
  return true;
}

bool inpS_LoadVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                   const KvoSimPosition& record) {
  if (keyword.Kind() == inp_KwCload) {
    inpS_ConcentratedLines lines(keyword, m_fluidSteps.Has(OpenStep()));
    return lines.Read(form, record, Names(), *this);
  }
  if (!inpS_hasLoadLabels(keyword.Kind())) {
    PlainLines lines;
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  if (!m_elements) m_elements.emplace(Inventory().GetDocument());
  inpS_LoadLines lines(keyword, record, Inventory().NumberSpatialDimensions(), *m_elements);
  return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
}
