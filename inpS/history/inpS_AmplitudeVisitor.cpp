#include "inpS/history/inpS_AmplitudeVisitor.h"
#include "base/utl_Assert.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSimGrid.h"
#include "database/KvoSimTransaction.h"
#include "database/KvoSimTransfer.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_AmplitudeForm.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using Data = inpS_AmplitudeForm::Data;
constexpr int kFieldsPerLine = 8;
constexpr double kUsualSmoothing = 0.25;

bool isEmpty(const inp_DataArray& data, long long row, int col) {
  return data.Type(row, col) == inp_FieldType::None;
}

// A line that holds nothing, or nothing but a comma.
bool isBlank(const inp_DataArray& data, long long row) {
  if (data.Cols(row) > 2) return false;
  for (int col = 0; col < data.Cols(row); ++col)
    if (!isEmpty(data, row, col)) return false;
  return true;
}

// Without the blank ones at the end.
long long linesOf(const inp_DataArray& data) {
  long long rows = data.Rows();
  while (rows > 0 && isBlank(data, rows - 1)) --rows;
  return rows;
}

// The members of its terms are given back when they are the last ones, and with them the collection
// that held no others.
void giveBack(KvoSimCollection collection, const eds_MemberSet& terms) {
  if (terms.IsEmpty() || terms[terms.Size() - 1] + 1 != collection.Space()) return;
  if (terms[0] == 0) return collection.Position().Remove();
  collection.Position().DataRecord().SetInt(eds_Collection_Space, terms[0]);
}

void removeDistribution(const KvoSimPosition& values) {
  for (const int64_t drawer : values.AsDistribution().DrawerIDArray()) {
    const KvoSimCSet terms = values.AsDistribution().DrawerCSet(drawer);
    giveBack(KvoSimCollection(values.Store(), terms.CollectionID()), terms.Set());
  }
  for (const KvoSimPosition& drawer : values.GetVector(eds_Member::Drawers)) {
    for (const int field : {eds_Drawer_Array, eds_Drawer_Over})
      if (const KvoSimPosition part = drawer.DataRecord().GetReference(field); !part.IsNull())
        part.Remove();
    drawer.Remove();
  }
  values.Remove();
}

// Steps come behind all of the model, wherever they stand in the deck.
bool standsBehind(const inp_Keyword& one, const inp_Keyword& other) {
  return one.Body()->text == other.Body()->text && one.Body()->begin > other.Body()->begin;
}

} // namespace

void inpS_AmplitudeVisitor::VisitList(inp_KeywordListRef keywords) {
  inpS_Visitor::VisitList(keywords);
  ReportUnreferredParameters(keywords, inpS_ownKeywords(inpS_Subject::Amplitudes));
}

// Its name is the whole model's: the copies of its part's instances are the same amplitude.
void inpS_AmplitudeVisitor::VisitAmplitude(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy()) return;
  KvoSimTransaction transaction(m_inventory.GetDocument().ContextID());
  const cow_String name = keyword.StringOf("name", "");
  if (name.empty()) return Ignore(keyword);
  if (const inpS_AmplitudeForm* form = FormOf(keyword))
    Create(keyword, *form, name);
  else
    KeepAsText(keyword);
  transaction.Commit();
}

const inpS_AmplitudeForm* inpS_AmplitudeVisitor::FormOf(const inp_Keyword& keyword) {
  const cow_String definition = keyword.StringOf("definition", "TABULAR");
  const bool cfd = m_inventory.IsCFD();
  if (definition.empty()) return nullptr; // told by the parser
  if ((definition == "ACTUATOR" || definition == "SOLUTIONDEPENDENT") && !cfd) return nullptr;
  const inpS_AmplitudeForm* form = inpS_amplitudeForm(definition);
  if (form && keyword.HasParameter("value") && !HasKnown(keyword, "value")) return nullptr;
  if (form) return form;
  const cow_String text = inp_Utils::Format(
      "Amplitude type %s is not available for this analysis type.", definition.c_str());
  // In a flow deck nothing else can stand in for it: there it is an error.
  if (cfd)
    Error(keyword, text);
  else
    Warning(keyword, text);
  return nullptr;
}

// What is no word of the language has been told by the parser.
bool inpS_AmplitudeVisitor::HasKnown(const inp_Keyword& keyword, const char* parameter) {
  return inp_KeywordTable::Instance()
             .ResolveWord(keyword.Kind(), parameter, keyword.StringOf(parameter, {}))
             .kind == inp_WordMatch::Kind::Known;
}

void inpS_AmplitudeVisitor::Create(const inp_Keyword& keyword, const inpS_AmplitudeForm& form,
                                   const cow_String& name) {
  const KvoSimPosition model = m_inventory.GetDocument().GetModel().Position();
  const KvoSimPosition former = model.FollowStringKey(eds_Member::Amplitudes, name);
  if (const auto other = m_defined.find(name);
      other != m_defined.end() && standsBehind(other->second, keyword))
    return LeaveToLater(keyword, other->second, name);
  if (!former.IsNull() && !m_defined.contains(name) && StandsInBase(former, name))
    return LeaveToBase(keyword, name);
  m_defined[name] = keyword;
  if (!former.IsNull()) {
    Warning(keyword, "Amplitude \"" + name + "\" is defined again; the new definition holds.");
    Remove(former);
  }
  const KvoSimPosition amplitude = model.CreateDataRecord(form.kind);
  KvoSimDataRecord record = amplitude.DataRecord();
  const auto packed = amplitude.Object().Packed();
  record.SetString(form.name, name);
  model.AssociateStringKey(eds_Member::Amplitudes, name, amplitude);
  m_ledger.Take(keyword, amplitude);
  const cow_String span = keyword.StringOf("time", "STEPTIME");
  record.SetSymb(form.timeSpan, span == "STEPTIME" ? 0 : 1);
  if (span != "STEPTIME" && span != "TOTALTIME")
    AddWarning(inp_Utils::MessageAtParameter(keyword, "time", "This is taken for TOTAL TIME."));
  inpS_readParameters(keyword, form.parameters, record, *this);
  for (const inp_Keyword& suboption : keyword.Suboptions()) m_suboptions.emplace(packed, suboption);
  keyword.Find("input"); // the parser has read that file's lines
  m_isWhole = true;
  CheckWidths(keyword, form);
  ReadFirstLine(keyword, form, record);
  ReadValues(keyword, form, amplitude, name);
  inpS_tellOtherParameters(keyword, *this);
  const inpS_KeptPart part{0, inpS_takeOtherParameters(keyword),
                           m_isWhole ? cow_String() : inpS_dataLines(keyword, *this)};
  if (!part.parameters.empty() || !part.lines.empty())
    m_parts.emplace(packed, inpS_keepPart(amplitude, part));
}

void inpS_AmplitudeVisitor::ReadValues(const inp_Keyword& keyword, const inpS_AmplitudeForm& form,
                                       const KvoSimPosition& amplitude, const cow_String& name) {
  KvoSimDataRecord record = amplitude.DataRecord();
  cow_List<double> pairs;
  if (form.data == Data::Pairs) pairs = ReadPairs(keyword, 0);
  if (form.data == Data::Coefficients) {
    pairs = ReadPairs(keyword, 1);
    if (record.GetInt64(eds_formField(eds_FormKind::AmplitudePeriodic, "terms")) !=
        static_cast<int64_t>(pairs.size() / 2))
      Warning(keyword, "The first line tells another number of terms than there are pairs.");
    return StoreTerms(amplitude, pairs);
  }
  if (form.data == Data::Magnitudes) {
    record.SetBool(eds_formField(eds_FormKind::AmplitudeTabular, "equally_spaced"), true);
    const double interval =
        record.GetDouble(eds_formField(eds_FormKind::AmplitudeTabular, "fixed_interval"));
    const double begin = record.GetDouble(eds_formField(eds_FormKind::AmplitudeTabular, "begin"));
    if (interval <= 0)
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, "fixedinterval",
          inpS_messageText(inpS_app_InvalidParameterValue, {"FIXED INTERVAL"}) +
              " It must be greater than 0; it is kept as given."));
    pairs = ReadMagnitudes(keyword, begin, interval);
  }
  if (form.kind == eds_FormKind::AmplitudeTabular) ReadSmoothing(keyword, record);
  if (form.data == Data::Pairs) CheckSpacing(keyword);
  if (pairs.empty() && form.data == Data::None) return;
  if (pairs.empty()) return Warning(keyword, "Amplitude \"" + name + "\" has no values.");
  const int kind = static_cast<int>(form.kind);
  KvoSrvFsmFTable::CreateTable(amplitude, kind, static_cast<int64_t>(pairs.size() / 2), 0,
                               {"Magnitude"}, {"Time"}, kind, pairs, 2, false,
                               {"Time", "Magnitude"});
}

// Once: a deck may define a hundred thousand amplitudes again. Texts of this deck come later.
void inpS_AmplitudeVisitor::GatherFormerTexts() {
  if (std::exchange(m_hasFormerTexts, true)) return;
  const KvoSimContext context = m_inventory.GetDocument().Context();
  for (const KvoSimPosition& text : context.GetRecords(eds_RecordKind::VerbatimKeyword)) {
    const KvoSimPosition owner = text.DataRecord().GetReference(eds_VerbatimKeyword_Owner);
    if (!owner.IsNull()) m_formerTexts.emplace(owner.Object().Packed(), text);
  }
  for (const KvoSimPosition& part : context.GetRecords(eds_RecordKind::KeptPart))
    m_parts.emplace(part.DataRecord().GetReference(eds_KeptPart_Owner).Object().Packed(), part);
}

// With all that it holds: table, terms, and its texts of this deck and of an earlier conversion.
void inpS_AmplitudeVisitor::Remove(const KvoSimPosition& amplitude) {
  GatherFormerTexts();
  const auto packed = amplitude.Object().Packed();
  const auto suboptions = m_suboptions.equal_range(packed);
  for (auto at = suboptions.first; at != suboptions.second; ++at) LeaveWithOwner(at->second);
  m_suboptions.erase(packed);
  const auto texts = m_formerTexts.equal_range(packed);
  for (auto at = texts.first; at != texts.second; ++at) at->second.Remove();
  m_formerTexts.erase(packed);
  if (const auto part = m_parts.find(packed); part != m_parts.end()) {
    part->second.Remove();
    m_parts.erase(part);
  }
  for (const KvoSimPosition& values : amplitude.GetVector(eds_Member::Distributions))
    removeDistribution(values);
  if (KvoSrvFsmFTable table = amplitude.GetFTable(); !table.IsNull()) table.Remove();
  for (KvoSimPosition& suboption : amplitude.GetVector(eds_Member::Suboptions)) {
    for (KvoSimPosition& line : suboption.GetVector(eds_Member::Lines)) line.Remove();
    suboption.Remove();
  }
  amplitude.Remove();
}

// What stands where the definition has no place for it.
void inpS_AmplitudeVisitor::CheckWidths(const inp_Keyword& keyword,
                                        const inpS_AmplitudeForm& form) {
  const inp_DataArray& data = keyword.Data();
  const bool firstOnly = form.data == Data::None;
  for (long long row = 0; row < linesOf(data); ++row) {
    const bool isFirst = row == 0 && !form.lineFields.empty();
    if (firstOnly && !isFirst) {
      AddWarning(inp_Utils::MessageAtRow(
          keyword, row, "The amplitude takes one data line; the others are kept, but not used."));
      m_isWhole = false;
      return;
    }
    const int most = isFirst ? static_cast<int>(form.lineFields.size()) : kFieldsPerLine;
    for (int col = most; col < data.Cols(row); ++col) {
      if (isEmpty(data, row, col)) continue;
      AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                           "The line holds at most " + std::to_string(most) +
                                               " values; those beyond are kept, but not used."));
      m_isWhole = false;
      break;
    }
  }
}

void inpS_AmplitudeVisitor::ReadFirstLine(const inp_Keyword& keyword,
                                          const inpS_AmplitudeForm& form, KvoSimDataRecord record) {
  const inp_DataArray& data = keyword.Data();
  if (form.lineFields.empty()) return;
  if (data.Rows() == 0 || isBlank(data, 0))
    Warning(keyword, "The values of the amplitude are missing; they read as 0.");
  for (std::size_t n = 0; n < form.lineFields.size(); ++n) {
    const int col = static_cast<int>(n);
    const bool given = data.Rows() > 0 && col < data.Cols(0);
    const bool terms =
        form.kind == eds_FormKind::AmplitudePeriodic &&
        form.lineFields[n] == eds_formField(eds_FormKind::AmplitudePeriodic, "terms");
    if (terms) {
      const long long count = given ? TermsAt(keyword, col) : 0;
      record.SetInt(form.lineFields[n], count);
    } else {
      record.SetDouble(form.lineFields[n], given ? ValueAt(keyword, 0, col) : 0.0);
    }
  }
}

long long inpS_AmplitudeVisitor::TermsAt(const inp_Keyword& keyword, int col) {
  constexpr double most = 1e15; // beyond, doubles have no fractions
  const inp_DataArray& data = keyword.Data();
  const double count = data.AsDouble(0, col);
  const bool isNumber = data.Type(0, col) != inp_FieldType::String;
  if (isNumber && std::abs(count) <= most && count == std::trunc(count))
    return static_cast<long long>(count);
  AddError(inp_Utils::MessageAtField(keyword, 0, col,
                                     "The number of terms is no whole number; it is read as 0."));
  m_isWhole = false;
  return 0;
}

void inpS_AmplitudeVisitor::ReadSmoothing(const inp_Keyword& keyword, KvoSimDataRecord record) {
  const inp_Item* smooth = keyword.Find("smooth");
  const double absent = m_inventory.IsExplicit() || m_inventory.IsCFD() ? 0.0 : kUsualSmoothing;
  record.SetDouble(eds_formField(eds_FormKind::AmplitudeTabular, "smoothing"),
                   smooth && smooth->IsNumber() ? smooth->AsDouble() : absent);
  if (!smooth) return;
  if (auto tiny = inpS_tinyNumberMessage(keyword, "smooth")) AddWarning(std::move(*tiny));
  if (smooth->IsNumber())
    record.SetBool(eds_formField(eds_FormKind::AmplitudeTabular, "smoothing_given"), true);
  const double value = smooth->AsDouble();
  if (smooth->IsNumber() && value >= 0 && value <= 0.5) return;
  wip_Message message =
      inp_Utils::MessageAtParameter(keyword, "smooth",
                                    inpS_messageText(inpS_app_InvalidParameterValue, {"SMOOTH"}) +
                                        " It must be a number from 0 to 0.5; it is kept as given.");
  if (smooth->IsNumber()) return AddWarning(std::move(message));
  if (keyword.LeaveUnread("smooth")) AddError(std::move(message));
}

// Times that are given need no rule to make them. What is not in the record is kept beside it: to
// tell of it is not to read it.
void inpS_AmplitudeVisitor::CheckSpacing(const inp_Keyword& keyword) {
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (parameter.name != "fixedinterval" && parameter.name != "begin") continue;
    parameter.told = true;
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, parameter.name,
        "This goes with DEFINITION=EQUALLY SPACED only; it is without effect."));
  }
}

double inpS_AmplitudeVisitor::ValueAt(const inp_Keyword& keyword, long long row, int col) {
  const inp_DataArray& data = keyword.Data();
  if (data.Type(row, col) == inp_FieldType::String) {
    AddError(inp_Utils::MessageAtField(keyword, row, col, "This is no number; it is read as 0."));
    m_isWhole = false;
  }
  if (auto tiny = inpS_tinyNumberMessage(keyword, row, col)) AddWarning(std::move(*tiny));
  return data.AsDouble(row, col);
}

cow_List<double> inpS_AmplitudeVisitor::ReadColumn(const inp_Keyword& keyword,
                                                   long long firstLine) {
  const inp_DataArray& data = keyword.Data();
  cow_List<double> column;
  const long long lines = linesOf(data);
  for (long long row = firstLine; row < lines; ++row) {
    const int cols = std::min(data.Cols(row), kFieldsPerLine);
    for (int col = 0; col < cols; ++col) {
      if (isEmpty(data, row, col))
        AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                             "An empty field is a magnitude of 0 here."));
      column.push_back(ValueAt(keyword, row, col));
    }
  }
  return column;
}

// With the times at which they are.
cow_List<double> inpS_AmplitudeVisitor::ReadMagnitudes(const inp_Keyword& keyword, double begin,
                                                       double interval) {
  cow_List<double> pairs;
  for (const double magnitude : ReadColumn(keyword, 0)) {
    const double time = static_cast<double>(pairs.size() / 2) * interval + begin;
    if (!std::isfinite(time)) {
      AddError(inp_Utils::MessageAtParameter(
          keyword, "fixedinterval",
          "The times become too large to be held; magnitudes from number " +
              std::to_string(pairs.size() / 2 + 1) + " on are kept, but not used."));
      m_isWhole = false;
      break;
    }
    pairs.push_back(time);
    pairs.push_back(magnitude);
  }
  return pairs;
}

cow_List<double> inpS_AmplitudeVisitor::ReadPairs(const inp_Keyword& keyword, long long firstLine) {
  const inp_DataArray& data = keyword.Data();
  cow_List<double> times;
  cow_List<double> magnitudes;
  cow_List<long long> rows; // of the times
  const long long lines = linesOf(data);
  for (long long row = firstLine; row < lines; ++row) {
    int cols = std::min(data.Cols(row), kFieldsPerLine);
    if (cols % 2 == 1 && isEmpty(data, row, cols - 1)) --cols; // a trailing comma
    if (cols % 2 == 1) {
      AddWarning(inp_Utils::MessageAtField(
          keyword, row, cols - 1, "This time has no magnitude; it is kept, but not used."));
      m_isWhole = false;
      --cols;
    }
    for (int col = 0; col < cols; ++col) {
      if (isEmpty(data, row, col))
        AddWarning(
            inp_Utils::MessageAtField(keyword, row, col, "An empty field is read as 0 here."));
      (col % 2 == 0 ? times : magnitudes).push_back(ValueAt(keyword, row, col));
    }
    rows.resize(times.size(), row);
  }
  if (magnitudes.size() != times.size()) utl_assertionFailed("md.Length() == td.Length()");
  cow_List<double> pairs;
  for (std::size_t n = 0; n < times.size(); ++n) {
    if (firstLine == 0 && n > 0 && times[n] < times[n - 1])
      AddWarning(inp_Utils::MessageAtRow(keyword, rows[n],
                                         "The times of an amplitude must rise; value " +
                                             std::to_string(n + 1) + " does not."));
    pairs.push_back(times[n]);
    pairs.push_back(magnitudes[n]);
  }
  return pairs;
}

// A distribution over one new member of the model's terms for each pair.
void inpS_AmplitudeVisitor::StoreTerms(const KvoSimPosition& amplitude,
                                       const cow_List<double>& pairs) {
  if (pairs.empty()) return;
  const KvoObjDocument& document = m_inventory.GetDocument();
  KvoSimCollection terms = document.GetTermCollection();
  const auto count = static_cast<int64_t>(pairs.size() / 2);
  const int64_t first = terms.ExtendSpace(count);
  const KvoSimDistribution values = document.CreateTypedDistribution(
      eds_DataType::General, KvoSimGrid{terms}, KvoSimRangeType(eds_ValueType::Double, 2));
  KvoSimTransfer transfer(values);
  transfer.SetMakeNewDrawer(terms.CreateCSetStrided(static_cast<int32_t>(first), count).ID());
  transfer.SetBuffer(std::span<const double>(pairs));
  transfer.ExecMake();
  amplitude.Associate(eds_Member::Distributions, values.Position());
}

// The definition that comes later in the deck holds; it was met before.
void inpS_AmplitudeVisitor::LeaveToLater(const inp_Keyword& keyword, const inp_Keyword& later,
                                         const cow_String& name) {
  Warning(later, "Amplitude \"" + name + "\" is defined again; the new definition holds.");
  keyword.ReferAll();
  m_ledger.LeaveOut(keyword);
  for (const inp_Keyword& suboption : keyword.Suboptions()) LeaveWithOwner(suboption);
}

bool inpS_AmplitudeVisitor::StandsInBase(const KvoSimPosition& amplitude, const cow_String& name) {
  if (!m_base) m_base.emplace(m_inventory.GetDocument());
  return m_base->Of(amplitude, name) != inpS_BaseReferences::Use::None;
}

// What has been computed with the former definition is past, and a deck has one of a name: as for
// materials, that of the base stays.
void inpS_AmplitudeVisitor::LeaveToBase(const inp_Keyword& keyword, const cow_String& name) {
  Error(keyword,
        "Amplitude \"" + name +
            "\" of the model that is restarted stands in what it has already, and stays as "
            "it is; this definition is left out, with all that belongs to it. Under another "
            "name it can be used from here on.");
  LeaveOut("amplitude");
  keyword.ReferAll();
  m_ledger.LeaveOut(keyword);
  for (const inp_Keyword& suboption : keyword.Suboptions()) {
    suboption.ReferAll();
    m_ledger.LeaveOut(suboption);
  }
}

void inpS_AmplitudeVisitor::LeaveWithOwner(const inp_Keyword& suboption) {
  m_ledger.LeaveOut(suboption);
  suboption.ReferAll();
  Warning(suboption, "The amplitude of this *" + suboption.Name() +
                         " is defined again; it is left out with it.");
}

// What stands below it belongs to no other amplitude: it stays with the model.
void inpS_AmplitudeVisitor::Ignore(const inp_Keyword& keyword) {
  Warning(keyword, "*AMPLITUDE has no name, so nothing can refer to it; it is left out.");
  LeaveOut("amplitude");
  keyword.ReferAll();
  m_ledger.LeaveOut(keyword);
  for (const inp_Keyword& suboption : keyword.Suboptions()) {
    m_ledger.KeepAsText(suboption, {{}, {}, {}, true});
    TellOfStray(suboption, "the one before it has no name");
  }
}

void inpS_AmplitudeVisitor::TellOfStray(const inp_Keyword& keyword, const char* why) {
  Warning(keyword,
          "*" + keyword.Name() + " belongs to an amplitude, and " + why + "; it is kept as text.");
}

void inpS_AmplitudeVisitor::VisitBaselineCorrection(const inp_Keyword& keyword) {
  if (!keyword.IsInstanceCopy() && keyword.ParentKind() == inp_NullKeyword)
    TellOfStray(keyword, "it stands behind none");
}

void inpS_AmplitudeVisitor::KeepAsText(const inp_Keyword& keyword) {
  keyword.ReferAll();
  m_ledger.KeepAsText(keyword);
}
