#include "parser/inp_Utf8ValidityVisitor.h"
#include "parser/inp_KeywordRewrite.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t shownPlaces = 3;

// The characters 0x80 to 0x9F of Windows-1252, where it differs from Latin-1; 0: none.
constexpr std::uint16_t otherSigns[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

unsigned characterOf(char c) { // in Windows-1252; 0: none
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 && byte < 0xA0 ? otherSigns[byte - 0x80] : byte;
}

void appendUtf8(cow_String& out, unsigned character) {
  if (character < 0x80) {
    out += static_cast<char>(character);
  } else if (character < 0x800) {
    out += static_cast<char>(0xC0 | character >> 6);
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | character >> 12);
    out += static_cast<char>(0x80 | (character >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  }
}

const char* skipAscii(const char* p, const char* end) {
  for (std::uint64_t eight; end - p >= 8; p += 8) {
    std::memcpy(&eight, p, 8);
    if (eight & 0x8080808080808080) break;
  }
  while (p != end && static_cast<unsigned char>(*p) < 0x80) ++p;
  return p;
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\r' && c != '\v' && c != '\f';
}

// Calls character(p, length) for every multi-byte character of the line and wrong(p) for every byte
// that belongs to none.
template <class Character, class Wrong>
void eachHigh(std::string_view line, Character&& character, Wrong&& wrong) {
  const char* const end = line.data() + line.size();
  for (const char* p = skipAscii(line.data(), end); p != end; p = skipAscii(p, end)) {
    const std::size_t length = inp_utf8CharLength(p, end);
    length ? character() : wrong(p);
    p += length ? length : 1;
  }
}

bool isValid(std::string_view line) {
  bool valid = true;
  eachHigh(
      line, [] {}, [&](const char*) { valid = false; });
  return valid;
}

// All lines of a keyword that may hold bytes above 127.
void eachSuspectLine(const inp_Keyword& keyword, const inp_LineLook& look) {
  const inp_KeywordBody& body = *keyword.Body();
  if (body.text && skipAscii(body.begin, body.end) != body.end) inp_eachKeywordLine(body, look);
  for (const inp_DataSegment& segment : keyword.Data().Segments())
    if (!segment.ascii) inp_eachLine(segment, look);
}

bool toUtf8(std::string_view line, cow_String& out) {
  if (isValid(line)) return false;
  for (const char c : line) appendUtf8(out, characterOf(c));
  return true;
}

} // namespace

void inp_Utf8ValidityVisitor::VisitList(inp_KeywordListRef keywords) {
  m_files.clear();
  m_suspects.clear();
  m_keywords = keywords;
  for (const inp_Keyword& keyword : keywords)
    if (keyword.Body()) Judge(keyword);
  for (const inp_Keyword& keyword : m_suspects) Treat(keyword);
  const bool converted = std::any_of(m_files.begin(), m_files.end(),
                                     [](const auto& file) { return file.second.warned; });
  if (converted) inp_renewScopeNames(m_keywords);
  m_suspects.clear();
}

// Gathers what the keyword says of its files.
void inp_Utf8ValidityVisitor::Judge(const inp_Keyword& keyword) {
  bool hasWrong = false;
  eachSuspectLine(keyword, [&](const inp_KeywordLine& line) {
    bool characters = false, wrong = false, otherCode = true;
    eachHigh(
        line.text, [&] { characters = true; },
        [&](const char* p) {
          wrong = true;
          otherCode = otherCode && characterOf(*p) != 0;
        });
    if (!characters && !wrong) return;
    if (wrong) otherCode = otherCode && std::none_of(line.text.begin(), line.text.end(), isControl);
    Wrong& file = m_files[line.deck->FileName()];
    file.hasCharacters = file.hasCharacters || characters;
    file.isOtherCode = file.isOtherCode && otherCode;
    hasWrong = hasWrong || wrong;
  });
  if (hasWrong) m_suspects.push_back(keyword);
}

void inp_Utf8ValidityVisitor::Treat(const inp_Keyword& keyword) {
  ReportWrong(keyword);
  Convert(keyword);
}

void inp_Utf8ValidityVisitor::Convert(const inp_Keyword& keyword) {
  const auto rewrite = [&](const inp_KeywordLine& line, cow_String& out) {
    Wrong& file = m_files[line.deck->FileName()];
    if (file.hasCharacters || !file.isOtherCode || !toUtf8(line.text, out)) return false;
    if (file.warned) return true;
    file.warned = true;
    wip_Message warning("the file is not UTF-8; it is read as Windows-1252 (Latin-1)");
    const char* const first = skipAscii(line.text.data(), line.text.data() + line.text.size());
    warning.place = line.PlaceOf({first, 1});
    AddWarning(std::move(warning));
    return true;
  };
  cow_List<wip_Message> errors, warnings; // the parser has given these already, in other bytes
  inp_KeywordBody& body = *keyword.Body();
  inp_rewriteKeywordLine(body, rewrite, errors, warnings);
  inp_rewriteData(
      body, [](const inp_DataSegment& segment) { return !segment.ascii; }, rewrite);
  for (cow_String& comment : body.comments) {
    cow_String fresh;
    if (toUtf8(comment, fresh)) comment = std::move(fresh);
  }
  for (wip_Message& error : errors) AddError(std::move(error));
}

// The bytes of files that are not converted.
void inp_Utf8ValidityVisitor::ReportWrong(const inp_Keyword& keyword) {
  cow_List<cow_String> shown;
  wip_Place first;
  std::size_t count = 0;
  eachSuspectLine(keyword, [&](const inp_KeywordLine& line) {
    const Wrong& file = m_files[line.deck->FileName()];
    if (!file.hasCharacters && file.isOtherCode) return;
    eachHigh(
        line.text, [] {},
        [&](const char* p) {
          if (++count > shownPlaces) return;
          const wip_Place place = line.PlaceOf({p, 1});
          if (count == 1) first = place;
          shown.push_back(inp_Utils::Format("line %lld, column %d (0x%02X)", place.line,
                                            place.column, static_cast<unsigned char>(*p)));
        });
  });
  if (count == 0) return;
  cow_String text = inp_Utils::MessageWithItems("bytes that are no UTF-8:", shown);
  if (count > shownPlaces) text += " and " + std::to_string(count - shownPlaces) + " more";
  wip_Message error(std::move(text));
  error.keyword = inp_printable(keyword.Name(), 80);
  error.place = std::move(first);
  AddError(std::move(error));
}
