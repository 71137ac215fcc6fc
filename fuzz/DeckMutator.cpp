// Mutations that keep a deck a deck: keywords, lines, fields and parameters are dropped, doubled,
// moved and exchanged, also between decks. Bytes changed anywhere, the fuzzer's own way, mostly
// give decks that are refused at once; these reach what keywords mean to each other.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* bytes, std::size_t size, std::size_t room);

namespace {

using Pieces = std::vector<std::string>;

std::string textOf(const std::uint8_t* bytes, std::size_t size) {
  return {reinterpret_cast<const char*>(bytes), size};
}

// Each ended, the last one too: it may come to stand before another.
Pieces linesOf(const std::string& text) {
  Pieces lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    lines.push_back(text.substr(begin, end - begin) + '\n');
    begin = end + 1;
  }
  return lines;
}

bool beginsKeyword(const std::string& line) {
  return line[0] == '*' && (line.size() < 2 || line[1] != '*');
}

// A keyword with its lines; what stands before the first one comes first.
Pieces keywordsOf(const std::string& deck) {
  Pieces keywords;
  for (const std::string& line : linesOf(deck)) {
    if (keywords.empty() || beginsKeyword(line)) keywords.emplace_back();
    keywords.back() += line;
  }
  return keywords;
}

Pieces fieldsOf(const std::string& line) {
  Pieces fields(1);
  for (const char c : line) {
    if (c == '\n') break;
    if (c == ',')
      fields.emplace_back();
    else
      fields.back() += c;
  }
  return fields;
}

std::string joined(const Pieces& pieces, const char* between = "") {
  std::string text;
  for (std::size_t n = 0; n < pieces.size(); ++n) text += (n == 0 ? "" : between) + pieces[n];
  return text;
}

class Mutation {
public:
  explicit Mutation(unsigned seed) : m_random(seed) {}

  std::string Of(const std::string& deck) {
    Pieces keywords = keywordsOf(deck);
    if (keywords.empty()) return Bytes(deck);
    switch (Below(8)) {
    case 0:
      return Bytes(deck);
    case 1:
    case 2:
      Rearrange(keywords);
      break;
    default:
      Change(Any(keywords));
    }
    return joined(keywords);
  }

  std::string Cross(const std::string& deck, const std::string& other) {
    Pieces keywords = keywordsOf(deck);
    const Pieces from = keywordsOf(other);
    if (from.empty()) return deck;
    const std::size_t first = Below(from.size());
    const std::size_t count = std::min(from.size() - first, 1 + Below(6));
    const auto at = from.begin() + static_cast<std::ptrdiff_t>(first);
    keywords.insert(keywords.begin() + static_cast<std::ptrdiff_t>(Below(keywords.size() + 1)), at,
                    at + static_cast<std::ptrdiff_t>(count));
    return joined(keywords);
  }

private:
  std::size_t Below(std::size_t count) { return m_random() % count; }
  std::string& Any(Pieces& pieces) { return pieces[Below(pieces.size())]; }

  std::string Bytes(std::string text) {
    constexpr std::size_t more = 64;
    const std::size_t size = text.size();
    text.resize(size + more);
    auto* bytes = reinterpret_cast<std::uint8_t*>(text.data());
    text.resize(LLVMFuzzerMutate(bytes, size, text.size()));
    return text;
  }

  void Rearrange(Pieces& pieces) {
    const std::size_t a = Below(pieces.size()), b = Below(pieces.size());
    const auto place = [&](std::size_t n) {
      return pieces.begin() + static_cast<std::ptrdiff_t>(n);
    };
    switch (Below(4)) {
    case 0:
      pieces.erase(place(a));
      break;
    case 1:
      pieces.insert(place(b), std::string(pieces[a]));
      break;
    default:
      std::swap(pieces[a], pieces[b]);
    }
  }

  // One line of a keyword, or the order of its lines.
  void Change(std::string& keyword) {
    Pieces lines = linesOf(keyword);
    const std::size_t n = Below(lines.size());
    if (lines.size() > 2 && Below(4) == 0) {
      Pieces data(lines.begin() + 1, lines.end());
      Rearrange(data);
      lines.resize(1);
      lines.insert(lines.end(), data.begin(), data.end());
    } else if (Below(6) == 0) {
      lines[n] = Bytes(lines[n]);
    } else {
      ChangeFields(lines[n]);
    }
    keyword = joined(lines);
  }

  void ChangeFields(std::string& line) {
    static const Pieces values = {"",    "0",   "1",       "2",        "-1",    "3",
                                  "10",  "0.5", "1e-30",   "1.5",      "1e300", "1e-9",
                                  "YES", "SET", "1000000", "999999999"};
    Pieces fields = fieldsOf(line);
    if (beginsKeyword(line)) { // one with parameters keeps its name more often than not
      if (fields.size() == 1 || Below(8) == 0) return void(line = Bytes(line));
      Pieces parameters(fields.begin() + 1, fields.end());
      std::string& parameter = Any(parameters);
      const std::size_t value = parameter.find('=');
      if (value != std::string::npos && Below(2) == 0)
        parameter = parameter.substr(0, value + 1) + values[Below(values.size())];
      else
        Rearrange(parameters);
      fields.resize(1);
      fields.insert(fields.end(), parameters.begin(), parameters.end());
    } else if (Below(3) == 0) {
      Rearrange(fields);
    } else {
      Any(fields) = values[Below(values.size())];
    }
    line = joined(fields, ",") + "\n";
  }

  std::minstd_rand m_random;
};

std::size_t give(const std::string& deck, std::uint8_t* out, std::size_t room) {
  const std::size_t size = std::min(deck.size(), room);
  std::memcpy(out, deck.data(), size);
  return size;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t room, unsigned seed) {
  return give(Mutation(seed).Of(textOf(bytes, size)), bytes, room);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* a, std::size_t sizeA,
                                                 const std::uint8_t* b, std::size_t sizeB,
                                                 std::uint8_t* out, std::size_t room,
                                                 unsigned seed) {
  return give(Mutation(seed).Cross(textOf(a, sizeA), textOf(b, sizeB)), out, room);
}
