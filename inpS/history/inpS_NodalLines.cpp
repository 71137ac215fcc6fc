#include "inpS/history/inpS_NodalLines.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

constexpr int firstColumn = 1; // degree of freedom, or a word
constexpr int lastColumn = 2;
constexpr int valueColumn = 3;     // of a condition
constexpr int magnitudeColumn = 2; // of a load
constexpr int mostDegree = 30;
constexpr int mostFixed = 6;
constexpr int mostLoaded = 8;

constexpr std::string_view restraints[] = {"ENCASTRE", "PINNED", "XSYMM",   "YSYMM",
                                           "ZSYMM",    "XASYMM", "YASYMM",  "ZASYMM",
                                           "NOWARP",   "NOOVAL", "NODEFORM"};
constexpr std::string_view velocities[] = {"VELX", "VELY", "VELZ", "VELXNU", "VELYNU", "VELZNU"};
// Of the sea and the wind upon the ends of slender elements; values of their own follow.
constexpr std::string_view endForces[] = {"TFD", "TFI", "TSB", "TWD"};
constexpr std::string_view flowForces[] = {"FX", "FY", "FZ"};

template <std::size_t count>
bool isOneOf(const cow_String& word, const std::string_view (&words)[count]) {
  return std::ranges::find(words, word) != std::end(words);
}

// "VELX, VELY or VELZ"
cow_String listOf(std::span<const std::string_view> words) {
  cow_String list(words.front());
  for (const std::string_view word : words.subspan(1))
    list += (word == words.back() ? " or " : ", ") + cow_String(word);
  return list;
}

// degree: as written.
cow_String textOfDegree(const cow_String& degree) {
  return "Degree of freedom " + degree + " is none of 1 to " + std::to_string(mostDegree) + ".";
}

bool isWord(int slot) {
  return slot < 0 && slot != inp_blankInt;
}

// What TYPE prescribes in the place of displacements, for people; empty: nothing. To ask the
// keyword for it would say that it has been read.
cow_String rateOf(const inp_Keyword& keyword) {
  for (const inp_Parameter& one : keyword.Parameters()) {
    if (one.name != "type") continue;
    const cow_String type = one.value.AsString();
    return type == "VELOCITY" ? "velocity" : type == "ACCELERATION" ? "acceleration" : "";
  }
  return {};
}

// words: of the column, in the order of their slots.
bool isRestraint(int slot, const cow_List<cow_String>& words) {
  const auto place = static_cast<std::size_t>(-1 - slot);
  return isWord(slot) && place < words.size() && isOneOf(words[place], restraints);
}

} // namespace

// ---- labels that are not there

inpS_NodalLines::inpS_NodalLines(const inp_Keyword& keyword, std::string_view missing,
                                 std::string_view ofInstance)
    : m_keyword(keyword), m_missing(missing), m_ofInstance(ofInstance) {}

bool inpS_NodalLines::TakeMissing(bool isLabel, const cow_String& asWritten) {
  if (!isLabel) return false;
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  if (parts.size() < 2 || parts.back().empty() || m_ofInstance.empty())
    m_labels[""].push_back(asWritten);
  else
    m_labels[parts[parts.size() - 2]].push_back(parts.back());
  return true;
}

bool inpS_NodalLines::Read(const eds_FormInfo& form, const KvoSimPosition& record,
                           const inpS_FormNames& names, inp_Visitor& messages) {
  inpS_ColumnReader reader(m_keyword, form, record, names, messages, this);
  const bool isWhole = reader.Read();
  m_refused = reader.Refused();
  Tell(messages);
  return isWhole;
}

void inpS_NodalLines::Tell(inp_Visitor& messages) const {
  for (const auto& [instance, labels] : m_labels) {
    const cow_String text =
        instance.empty() ? m_missing : inp_Utils::Format(m_ofInstance.c_str(), instance.c_str());
    wip_Message message = inp_Utils::MessageInKeyword(m_keyword, text, labels);
    message.notes.push_back(
        {"Their lines are kept as they stand, and nothing is made of them.", {}});
    messages.AddError(std::move(message));
  }
}

// ---- conditions

inpS_BoundaryLines::inpS_BoundaryLines(const inp_Keyword& keyword, bool isFluidStep)
    : inpS_NodalLines(keyword, "Boundary condition references undefined nodes: ",
                      "Boundary condition references undefined nodes from instance %s: "),
      m_isFluidStep(isFluidStep), m_isFixed(inpS_saysYes(keyword, "fixed")),
      m_rate(rateOf(keyword)),
      m_needsDegree(!inpS_saysYes(keyword, "submodel") && !keyword.HasParameter("file")) {}

cow_String inpS_BoundaryLines::TextOfMissing(const cow_String& name) const {
  return "Boundary condition references undefined node set: " + name;
}

bool inpS_BoundaryLines::IsWord(const cow_String& text) const {
  return isOneOf(text, restraints) || (m_isFluidStep && isOneOf(text, velocities));
}

bool inpS_BoundaryLines::IsSound(const inp_ColumnPiece& piece, Words words) {
  const cow_List<cow_String>& all = words[firstColumn]->All();
  for (; m_knownWords < all.size(); ++m_knownWords)
    m_areWordsKnown = m_areWordsKnown && IsWord(all[m_knownWords]);
  const int most = m_isFixed || !m_rate.empty() ? mostFixed : mostDegree;
  bool isSound =
      m_areWordsKnown &&
      !(m_isFixed && piece.given > valueColumn &&
        !std::ranges::all_of(piece.columns[valueColumn].reals.first(piece.count), inp_isBlankReal));
  const std::span<const int> first = piece.columns[firstColumn].ints;
  const std::span<const int> last = piece.columns[lastColumn].ints;
  for (std::size_t n = 0; n < piece.count; ++n) {
    const bool isFirst = first[n] == inp_blankInt
                             ? !m_needsDegree
                             : first[n] < 0 || (first[n] >= 1 && first[n] <= most);
    const bool isLast = last[n] == inp_blankInt || (last[n] >= first[n] && last[n] <= most);
    isSound &= isFirst && isLast && !(isRestraint(first[n], all) && last[n] != inp_blankInt);
  }
  if (!all.empty())
    for (std::size_t n = 0; n < piece.count; ++n)
      isSound &= !isRestraint(first[n], all) ||
                 (m_rate.empty() && inp_isBlankReal(piece.columns[valueColumn].reals[n]));
  return isSound;
}

std::optional<inpS_LineFault> inpS_BoundaryLines::FaultOf(const inpS_LineView& line) {
  const int first = line.slots[firstColumn];
  const int last = line.slots[lastColumn];
  if (isWord(first)) {
    const cow_String word = inp_Utils::Fold(line.Text(firstColumn));
    if (isOneOf(word, restraints) && !m_rate.empty())
      return inpS_LineFault{firstColumn, word + " restrains displacements and has no " + m_rate +
                                             "; TYPE=DISPLACEMENT takes it."};
    if (isOneOf(word, restraints) && (line.Has(lastColumn) || line.Has(valueColumn)))
      return inpS_LineFault{line.Has(lastColumn) ? lastColumn : valueColumn,
                            word + " tells all; what follows is kept, and means nothing.", false,
                            false};
    if (IsWord(word)) return {};
    return inpS_LineFault{
        firstColumn,
        "\"" + word + "\" is none of the restraints " + listOf(restraints) +
            (m_isFluidStep ? ", nor of the velocities " + listOf(velocities) : cow_String()) + "."};
  }
  if (first == inp_blankInt) {
    if (!m_needsDegree) return {};
    return inpS_LineFault{-1, "The line does not tell its degree of freedom."};
  }
  for (const int col : {firstColumn, lastColumn}) {
    const int degree = line.slots[static_cast<std::size_t>(col)];
    if (degree == inp_blankInt) continue;
    if (degree < 1 || degree > mostDegree) return inpS_LineFault{col, textOfDegree(line.Text(col))};
    if (!m_rate.empty() && degree > mostFixed)
      return inpS_LineFault{col, "Degree of freedom " + std::to_string(degree) + " has no " +
                                     m_rate + ": displacements and rotations, 1 to 6, have one."};
    if (m_isFixed && degree > mostFixed)
      return inpS_LineFault{col,
                            "Boundary condition with parameter fixed not supported for dof > 6"};
  }
  if (last != inp_blankInt && last < first)
    return inpS_LineFault{lastColumn, "The last degree of freedom, " + std::to_string(last) +
                                          ", is below the first, " + std::to_string(first) + "."};
  if (m_isFixed && line.Has(valueColumn))
    return inpS_LineFault{valueColumn,
                          "FIXED holds what is there; the value is kept, and means nothing.", false,
                          false};
  return {};
}

// ---- loads

inpS_ConcentratedLines::inpS_ConcentratedLines(const inp_Keyword& keyword, bool isFluidStep)
    : inpS_NodalLines(keyword, "Cloadreferences undefined nodes: "), m_isFluidStep(isFluidStep),
      m_isOfUser(inpS_saysYes(keyword, "user")),
      m_isElsewhere(m_isOfUser || inpS_saysYes(keyword, "submodel")) {}

bool inpS_ConcentratedLines::IsSound(const inp_ColumnPiece& piece, Words words) {
  if (m_isFluidStep || !words[firstColumn]->All().empty()) return false;
  if (!inp_areWithin(piece.columns[firstColumn].ints.first(piece.count), 1, mostLoaded))
    return false;
  if (!m_isElsewhere && inp_hasBlank(piece.columns[magnitudeColumn].reals.first(piece.count)))
    return false;
  constexpr int surplus = magnitudeColumn + 1;
  return piece.given <= surplus ||
         std::ranges::all_of(piece.columns[surplus].reals.first(piece.count), inp_isBlankReal);
}

std::optional<inpS_LineFault> inpS_ConcentratedLines::FaultOf(const inpS_LineView& line) {
  const int degree = line.slots[firstColumn];
  const cow_String word = inp_Utils::Fold(line.Text(firstColumn));
  if (m_isFluidStep) {
    if (isOneOf(word, flowForces)) return {};
    return inpS_LineFault{
        firstColumn,
        inp_Utils::Format("Unsupported *CLOAD type \"%s\" for flow step", word.c_str())};
  }
  if (isOneOf(word, endForces)) return {};
  if (isWord(degree))
    return inpS_LineFault{firstColumn, "\"" + word + "\" is no degree of freedom."};
  if (degree == inp_blankInt)
    return inpS_LineFault{-1, "The line does not tell its degree of freedom."};
  if (degree < 1 || degree > mostDegree)
    return inpS_LineFault{firstColumn, textOfDegree(line.Text(firstColumn))};
  if (!m_isOfUser && line.Has(magnitudeColumn + 1))
    return inpS_LineFault{magnitudeColumn + 1,
                          "A force has one magnitude; what follows is kept, and means nothing.",
                          false, false};
  if (degree <= mostLoaded && (m_isElsewhere || line.Has(magnitudeColumn))) return {};
  if (degree <= mostLoaded)
    return inpS_LineFault{-1, "The line gives no magnitude, which is 0.", false, false};
  const bool isHeat = degree > 10;
  return inpS_LineFault{firstColumn,
                        "Degree of freedom " + std::to_string(degree) + " takes no force: " +
                            (isHeat ? "fluxes are given by *CFLUX."
                             : degree == 9
                                 ? "charges and currents are given by *CECHARGE and *CECURRENT."
                                 : "only elements of users may have loads of it."),
                        false, false};
}
