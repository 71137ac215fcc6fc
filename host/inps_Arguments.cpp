#include "host/inps_Arguments.h"

#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "host/inps_Input.h"
#include <algorithm>

namespace {

// Insertions, deletions, replacements and swaps of neighbours that make one word of the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
  cow_List<cow_List<std::size_t>> d(a.size() + 1, cow_List<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i)
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = a[i - 1] == b[j - 1] ? 0 : 1;
      d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + changed});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  return d[a.size()][b.size()];
}

// Those of the command first.
cow_List<inps_Opt> optionsOf(const inps_Command& command) {
  cow_List<inps_Opt> all(command.options.begin(), command.options.end());
  const std::span<const inps_Opt> common = inps_commonOptions();
  all.insert(all.end(), common.begin(), common.end());
  return all;
}

const inps_Option* findOption(const inps_Command& command, std::string_view name, char letter) {
  for (const inps_Opt id : optionsOf(command)) {
    const inps_Option& option = inps_option(id);
    if (letter ? option.letter == letter : option.name == name) return &option;
  }
  return nullptr;
}

cow_String unknownOption(const inps_Command& command, std::string_view word) {
  cow_List<std::string_view> names;
  for (const inps_Opt id : optionsOf(command)) names.push_back(inps_option(id).name);
  return "\"" + cow_String(command.name) + "\" has no option \"" + cow_String(word) + "\"" +
         inps_didYouMean(word, names);
}

} // namespace

std::string_view inps_nearest(std::string_view word, std::span<const std::string_view> candidates) {
  constexpr std::size_t longestWord = 40; // no name of ours is near anything longer
  std::string_view best;
  std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
  if (word.size() > longestWord) return best;
  for (const std::string_view candidate : candidates) {
    const bool begins = word.size() >= 2 && candidate.starts_with(word);
    const std::size_t distance = begins ? 1 : editDistance(word, candidate);
    if (distance >= least) continue;
    least = distance;
    best = candidate;
  }
  return best;
}

cow_String inps_didYouMean(std::string_view word, std::span<const std::string_view> candidates) {
  const std::string_view nearest = inps_nearest(word, candidates);
  return nearest.empty() ? cow_String() : " (did you mean \"" + cow_String(nearest) + "\"?)";
}

std::filesystem::path inps_Arguments::PathOf(inps_Opt option) const {
  return utl_pathOf(ValueOf(option));
}

std::filesystem::path inps_Arguments::Path(std::size_t operand) const {
  utl_ASSERT(operand < m_operands.size());
  return utl_pathOf(m_operands[operand]);
}

// "--name", "--name=value", "--name value", "-xvalue", "-x value".
cow_String inps_Arguments::ReadOption(const inps_Command& command,
                                      std::span<const cow_String> words, std::size_t& at) {
  const std::string_view word = words[at];
  const bool isLong = word.starts_with("--");
  const std::size_t equals = isLong ? word.find('=') : std::string_view::npos;
  const std::string_view name = isLong ? word.substr(0, equals) : word.substr(0, 2);
  const inps_Option* option = findOption(command, name, isLong ? '\0' : word[1]);
  if (!option) return unknownOption(command, name);

  const auto index = static_cast<std::size_t>(option->id);
  if (m_given[index]) return "\"" + cow_String(name) + "\" is given twice";
  m_given[index] = true;
  const bool attached = isLong ? equals != std::string_view::npos : word.size() > 2;
  const std::string_view rest =
      !attached ? std::string_view() : word.substr(isLong ? equals + 1 : 2);
  if (option->value.empty())
    return attached ? "\"" + cow_String(name) + "\" takes no value" : cow_String();
  if (!attached && at + 1 < words.size()) m_values[index] = words[++at];
  if (attached) m_values[index] = rest;
  if (m_values[index].empty())
    return "\"" + cow_String(name) + "\" needs a value: " + cow_String(option->value);
  return {};
}

cow_String inps_Arguments::Read(const inps_Command& command, std::span<const cow_String> words) {
  bool onlyOperands = false;
  for (std::size_t at = 0; at < words.size(); ++at) {
    const std::string_view word = words[at];
    if (!onlyOperands && word == "--") {
      onlyOperands = true;
    } else if (!onlyOperands && word.size() > 1 && word[0] == '-') {
      cow_String fault = ReadOption(command, words, at);
      if (!fault.empty()) return fault;
    } else if (m_operands.size() == command.most) {
      return "\"" + cow_String(command.name) + "\" has no use for \"" + cow_String(word) + "\"";
    } else {
      m_operands.push_back(words[at]);
    }
  }
  if (m_operands.size() < command.fewest && !Has(inps_Opt::Help))
    return "\"" + cow_String(command.name) + "\" needs " + cow_String(command.operands);
  for (const cow_String& operand : m_operands)
    if (operand.empty()) return "\"" + cow_String(command.name) + "\" is given an empty name";
  const auto read =
      m_operands.begin() +
      static_cast<std::ptrdiff_t>(std::min(m_operands.size(), command.most - command.written));
  const auto dashes = std::count(m_operands.begin(), read, inps_dash) +
                      (ValueOf(inps_Opt::Restart) == inps_dash ? 1 : 0);
  if (dashes > 1) return "standard input can be read only once, and \"-\" is given twice";
  return {};
}
