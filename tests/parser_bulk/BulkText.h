#pragma once

#include "base/utl_BlockSize.h"
#include "base/utl_InstructionSet.h"
#include "base/utl_Threads.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_DataPieces.h"
#include "parser/inp_TextLines.h"
#include <random>
#include <string>
#include <vector>

// Data lines given as texts, one segment each. Every second segment begins behind a keyword line,
// as in a deck; the others at the start of their text, as in a file that INPUT= names.
inline inp_DataArray dataOf(const std::vector<std::string>& segments) {
  cow_List<inp_DataSegment> made;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const std::string front = i % 2 == 0 ? "*NODE\n" : "";
    inp_DataSegment segment;
    segment.text = inp_DeckText::FromString(front + segments[i], "deck.inp");
    segment.begin = segment.text->Begin() + front.size();
    segment.end = segment.text->End();
    segment.firstLine = 2;
    for (const char* p = segment.begin; p != segment.end;) {
      const char* const feed = inp_lineFeed(p, segment.end);
      segment.rows += inp_lineKind(p, feed) == inp_LineKind::Data;
      p = feed == segment.end ? feed : feed + 1;
    }
    made.push_back(segment);
  }
  return inp_DataArray(std::move(made));
}

// Threads, piece size and instructions for the life of a scope.
struct BulkSetting {
  BulkSetting(int threads, std::size_t pieceSize,
              utl_InstructionSet instructions = utl_InstructionSet::Avx2) {
    utl_setThreadCount(threads);
    utl_limitBlockSize(pieceSize);
    utl_limitInstructionSet(instructions);
  }
  ~BulkSetting() {
    utl_setThreadCount(0);
    utl_limitBlockSize(0);
    utl_limitInstructionSet(utl_InstructionSet::Avx2);
  }
};

inline constexpr struct {
  int threads;
  std::size_t pieceSize;
  utl_InstructionSet instructions = utl_InstructionSet::Avx2; // where the machine has it
} bulkSettings[] = {{1, 0},
                    {1, 1},
                    {1, 40},
                    {2, 7},
                    {2, 100},
                    {2, 1000},
                    {1, 0, utl_InstructionSet::Portable},
                    {2, 100, utl_InstructionSet::Portable}};

// Decks of every spelling, the same ones on every machine.
class RandomLines {
public:
  explicit RandomLines(unsigned seed) : m_random(seed) {}

  int Below(int bound) { return static_cast<int>(m_random() % static_cast<unsigned>(bound)); }
  bool OneIn(int n) { return Below(n) == 0; }

  std::string Blanks() {
    static const char* const blanks[] = {"", "", "", " ", " ", "  ", "\t", "            ", " \t "};
    return blanks[Below(9)];
  }
  std::string Digits(int most) {
    std::string digits;
    for (int n = 1 + Below(most); n > 0; --n) digits += static_cast<char>('0' + Below(10));
    return digits;
  }
  std::string Label() {
    if (OneIn(40)) return Odd();
    return (OneIn(8) ? "-" : OneIn(8) ? "+" : "") + Digits(OneIn(20) ? 11 : 9);
  }
  std::string Real() {
    if (OneIn(60)) return Odd();
    std::string text = OneIn(3) ? "-" : OneIn(8) ? "+" : "";
    switch (Below(4)) {
    case 0:
      text += Digits(OneIn(9) ? 25 : 9);
      break;
    case 1:
      text += Digits(OneIn(9) ? 18 : 6) + "." + Digits(OneIn(9) ? 18 : 8);
      break;
    case 2:
      text += Digits(4) + ".";
      break;
    default:
      text += "." + Digits(17);
      break;
    }
    static const char letters[] = "eEdD";
    if (OneIn(4))
      text += letters[Below(4)] + std::string(OneIn(2) ? "-" : OneIn(2) ? "+" : "") + Digits(2);
    return text;
  }
  std::string Odd() {
    static const char* const odd[] = {
        "",      "A",     "1.",  "1.5e3",      "\"a b\"", "1 2",
        "-",     ".",     "1e",  "2147483648", "-0",      "-0.0",
        "1e400", "0x1",   "+-1", "1..2",       "--5",     "99999999999999999999",
        "1-",    "5\x80", "inf", "1e-400",     "*",       "9007199254740993"};
    return odd[Below(24)];
  }
  // Spellings that whole decks are made of, and what one wrong byte here and there makes of them.
  std::string PlainInt(int most) { return std::string(Below(4), ' ') + Digits(most); }
  std::string PlainReal() {
    std::string text =
        std::string(Below(4), ' ') + (OneIn(3) ? "-" : "") + Digits(OneIn(9) ? 9 : 4);
    if (!OneIn(9)) text += "." + (OneIn(4) ? "" : Digits(OneIn(4) ? 12 : 6));
    return text + (OneIn(30) ? " " : "");
  }
  void Spoil(std::string& text) {
    static const std::string bytes = " ,.-+059\t\rEeA\n\x80";
    for (std::size_t n = text.size() / 200; n > 0; --n)
      text[m_random() % text.size()] = bytes[m_random() % bytes.size()];
  }
  std::string LineEnd() { return OneIn(5) ? "\r\n" : OneIn(30) ? "  \n" : "\n"; }
  std::string Filler() {
    if (OneIn(15)) return "** 1, 2, 3, 4" + LineEnd();
    if (OneIn(15)) return "  **" + LineEnd();
    if (OneIn(15)) return Blanks() + LineEnd();
    return "";
  }

private:
  std::mt19937 m_random;
};
