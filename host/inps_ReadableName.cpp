#include "host/inps_Chart.h"

#include <algorithm>

namespace {

struct Greek {
  std::string_view name;
  std::string_view letter;
};
constexpr Greek greek[] = {{"alpha", "α"},  {"beta", "β"}, {"gamma", "γ"}, {"delta", "δ"},
                           {"eps", "ε"},    {"eta", "η"},  {"theta", "θ"}, {"kappa", "κ"},
                           {"lambda", "λ"}, {"mu", "μ"},   {"nu", "ν"},    {"rho", "ρ"},
                           {"sigma", "σ"},  {"tau", "τ"},  {"phi", "φ"},   {"psi", "ψ"},
                           {"omega", "ω"},  {"Gamma", "Γ"}};

bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}
bool isUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

cow_String subscript(std::string_view digits) {
  cow_String text;
  for (const char c : digits) text += {'\xe2', '\x82', static_cast<char>('\x80' + (c - '0'))};
  return text;
}

// "Yield stress" for "YieldStress"; "dH" stays.
cow_String words(std::string_view text) {
  cow_String out;
  for (std::size_t n = 0; n < text.size(); ++n) {
    const char c = text[n];
    const bool begins = n > 0 && isUpper(c) && n + 1 < text.size() && isLower(text[n + 1]);
    if (begins && isLower(text[n - 1])) out += ' ';
    out += begins ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return out;
}

cow_String readableWord(std::string_view word) {
  const std::size_t last = word.find_last_not_of("0123456789");
  const std::size_t stemSize = last == word.npos ? word.size() : last + 1;
  const std::string_view stem = word.substr(0, stemSize);
  const auto letter = std::ranges::find(greek, stem, &Greek::name);
  return (letter != std::end(greek) ? cow_String(letter->letter) : words(stem)) +
         subscript(word.substr(stemSize));
}

} // namespace

cow_String inps_readableName(std::string_view column) {
  // "MMec_KinematicHardening_C1": what stands before the first "_" names a family, not a quantity.
  for (const std::string_view family : {"MMec_", "MThermal_", "Mthermal_"})
    if (column.starts_with(family)) column.remove_prefix(family.size());
  cow_String text;
  while (!column.empty()) {
    const std::size_t end = std::min(column.find('_'), column.size());
    text += (text.empty() ? "" : " ") + readableWord(column.substr(0, end));
    column.remove_prefix(std::min(end + 1, column.size()));
  }
  return text;
}
