#include "inpS/writer/inpS_StepMarks.h"
#include "inpS/forms/inpS_Blocks.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

constexpr std::string_view kContact[] = {"CONTACT", "CONTACT PAIR", "CONTACT CONTROLS", "CLEARANCE",
                                         "CHANGE FRICTION"};
constexpr std::string_view kRequests[] = {" OUTPUT", " PRINT", " FILE", " RESPONSE"};

// Null: of no subject.
const char* tagOf(std::string_view keyword) {
  if (keyword == "CONTACT INTERFERENCE") return "ContactIntf";
  if (std::ranges::find(kContact, keyword) != std::end(kContact)) return "Contact";
  if (keyword == "OUTPUT" ||
      std::ranges::any_of(kRequests, [&](std::string_view end) { return keyword.ends_with(end); }))
    return "OutReqs";
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  const inp_KeywordEnm kind = table.Find(keyword);
  const inp_KeywordRow* row = table.Row(kind);
  if (row && row->role == inp_KeywordRole::Procedure) return "Task";
  const inpS_Phase phase = inpS_stepPhaseOf(kind);
  const bool acts = phase == inpS_Phase::Boundaries || phase == inpS_Phase::Loads ||
                    kind == inp_KwTemperature || kind == inp_KwConnectorLoad ||
                    kind == inp_KwConnectorMotion;
  return acts ? "Excit" : nullptr;
}

} // namespace

void inpS_StepMarks::Enter(std::string_view keyword) {
  if (const char* tag = tagOf(keyword)) Mark(tag);
}

void inpS_StepMarks::Mark(const char* tag) {
  if (m_tag && std::string_view(tag) == m_tag) return;
  m_open.reset();
  m_tag = tag;
  m_open.emplace("Sim2InpStep-", tag);
}
