#include "bench/limit_program.h"

#include "base/utl_InstructionSet.h"
#include "base/utl_Number.h"
#include "parser/inp_FieldScan.h"
#include "parser/inp_StretchFinder.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t nodesPerBrick = limitNodesPerBrick;

// ---- one loop over the text ----------------------------------------------------------

// These return the place behind the separator, and null for what they do not know.

const char* readInteger(const char* p, const char* end, char separator, std::int32_t& value) {
  std::int64_t wide = 0;
  if (p != nullptr) p = utl_readInt(p, end, wide);
  if (p == nullptr || p == end || *p != separator) return nullptr;
  value = static_cast<std::int32_t>(wide);
  return p + 1;
}

const char* readReal(const char* p, const char* end, char separator, double& value) {
  if (p != nullptr) p = utl_readDouble(p, end, value);
  if (p == nullptr || p == end || *p != separator) return nullptr;
  return p + 1;
}

const char* readLine(LimitSection section, const char* p, const char* end, LimitRows& rows) {
  const std::size_t row = rows.rows++;
  p = readInteger(p, end, ',', rows.labels[row]);
  if (section == LimitSection::Nodes) {
    double* reals = rows.reals.data() + 3 * row;
    p = readReal(p, end, ',', reals[0]);
    p = readReal(p, end, ',', reals[1]);
    return readReal(p, end, '\n', reals[2]);
  }
  std::int32_t* nodes = rows.integers.data() + nodesPerBrick * row;
  for (std::size_t i = 0; i + 1 < nodesPerBrick; ++i) p = readInteger(p, end, ',', nodes[i]);
  return readInteger(p, end, '\n', nodes[nodesPerBrick - 1]);
}

bool decodeScalar(LimitSection section, const char* p, const char* end, LimitRows& rows) {
  while (p != nullptr && p != end && *p != '*') p = readLine(section, p, end, rows);
  rows.stoppedAt = p;
  return p != nullptr;
}

// ---- separators first, then many fields at once, as the parser has it --------------------------

void takeNodeLines(const inp_Stretch& stretch, inp_LinePlace& at, LimitRows& rows) {
  rows.rows += inp_takeNodeLines(stretch, at, rows.labels.data() + rows.rows,
                                 rows.reals.data() + 3 * rows.rows);
}

void takeElementLines(const inp_Stretch& stretch, inp_LinePlace& at, LimitRows& rows) {
  constexpr std::size_t fields = 1 + nodesPerBrick;
  const int* values = rows.fields.data() + at.separator;
  for (; at.line < stretch.lines; ++at.line, at.separator += fields, values += fields) {
    if (at.separator + fields > stretch.count) return;
    if (stretch.places[at.separator + fields - 1] != stretch.feeds[at.line]) return;
    for (std::size_t i = 0; i < fields; ++i)
      if (values[i] < 0) return;
    rows.labels[rows.rows] = values[0];
    std::memcpy(rows.integers.data() + nodesPerBrick * rows.rows, values + 1,
                nodesPerBrick * sizeof(int));
    ++rows.rows;
  }
}

// False when there is a line that is none of the section; `stoppedAt` is set at a keyword.
bool decodeStretch(LimitSection section, const inp_Stretch& stretch, LimitRows& rows) {
  if (section == LimitSection::Elements) {
    rows.fields.resize(std::max(rows.fields.size(), stretch.count + inp_batchRoom));
    inp_smallInts(stretch, rows.fields.data());
  }
  inp_LinePlace at;
  for (;;) {
    if (section == LimitSection::Nodes)
      takeNodeLines(stretch, at, rows);
    else
      takeElementLines(stretch, at, rows);
    if (at.line == stretch.lines) return true;
    const char* const line = stretch.FieldBegin(at.separator);
    const char* const lineEnd = stretch.text + stretch.feeds[at.line] + 1;
    if (*line == '*') {
      rows.stoppedAt = line;
      return true;
    }
    if (readLine(section, line, lineEnd, rows) != lineEnd) return false;
    while (stretch.FieldEnd(at.separator) + 1 != lineEnd) ++at.separator;
    ++at.separator;
    ++at.line;
  }
}

bool decodeStretches(LimitSection section, const char* begin, const char* end, LimitRows& rows) {
  rows.stoppedAt = nullptr;
  while (begin != end) {
    const inp_Stretch stretch =
        rows.finder.Find(begin, begin + std::min(end - begin, inp_StretchFinder::usualSize));
    if (stretch.lines == 0 || !decodeStretch(section, stretch, rows)) return false;
    if (rows.stoppedAt) return true;
    begin += stretch.feeds[stretch.lines - 1] + 1;
  }
  rows.stoppedAt = end;
  return true;
}

} // namespace

void limitUseScalarDecoder() {
  utl_limitInstructionSet(utl_InstructionSet::Portable);
}

const char* limitDecoderName() {
  return utl_instructionSet() == utl_InstructionSet::Avx2 ? "avx2" : "scalar";
}

bool limitDecode(LimitSection section, const char* textBegin, const char* begin, const char* end,
                 LimitRows& rows) {
  const auto size = static_cast<std::size_t>(end - begin);
  const std::size_t mostRows = size / 8 + 1; // "1,0,0,0" and a line end
  rows.rows = 0;
  if (rows.labels.size() < mostRows) rows.labels.resize(mostRows);
  if (section == LimitSection::Nodes && rows.reals.size() <= 3 * mostRows)
    rows.reals.resize(3 * mostRows + 1);
  if (section == LimitSection::Elements && rows.integers.size() < nodesPerBrick * mostRows)
    rows.integers.resize(nodesPerBrick * mostRows);
  if (utl_instructionSet() == utl_InstructionSet::Avx2 && begin - textBegin >= inp_fieldReach)
    return decodeStretches(section, begin, end, rows);
  return decodeScalar(section, begin, end, rows);
}
