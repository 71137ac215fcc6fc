#pragma once

#include "parser/inp_DataArray.h"
#include <functional>

// Data lines cut into pieces for the bulk decode: small enough to stay in a core's cache, many
// enough for all cores.

// Whole lines of one text; only the last one may lack its line feed.
struct inp_TextRange {
  const inp_DeckText* text = nullptr;
  const char* begin = nullptr;
  const char* end = nullptr;
};

// What is decoded in one go; nearly always one range.
using inp_DataPiece = cow_List<inp_TextRange>;

// Where data that is read in records of several lines may be cut.
class inp_CutRule {
public:
  virtual ~inp_CutRule() = default;
  // The first line start at or behind `wanted` where a record begins; range.end when there is none.
  // `from` is an earlier such place, or null when the range may begin within a record.
  virtual const char* Cut(const inp_TextRange& range, const char* from,
                          const char* wanted) const = 0;
  // Whether a record may go on behind the range, given whether one may have gone on before it.
  virtual bool IsOpenBehind(const inp_TextRange& range, bool openBefore) const = 0;
};

// Without a rule every line is a record.
cow_List<inp_DataPiece> inp_cutData(const inp_DataArray& data, const inp_CutRule* rule = nullptr);

// Calls decode(piece, slot) on all threads and publish(slot) one after the other in the order of
// the pieces, and lets the text's pages go behind it.
void inp_decodePieces(const cow_List<inp_DataPiece>& pieces,
                      const std::function<void(const inp_DataPiece&, std::size_t slot)>& decode,
                      const std::function<void(std::size_t slot)>& publish);
