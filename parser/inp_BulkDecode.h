#pragma once

#include "base/utl_Buffer.h"
#include "parser/inp_DataArray.h"
#include <functional>
#include <span>

// Bulk decode of data lines: labels and numbers of a whole block go from text to typed arrays in
// one loop, in pieces spread over the cores. The result does not depend on the number of threads,
// and every number is the one that inp_DataArray gives for its field. Lines that do not fit the
// regular form are left out of the arrays' fast path and listed, so that the caller can read them
// by the general road and report them. Pages of the text that have been decoded leave memory.

// One line the fast loop could not take; the caller decides what it is.
struct inp_OddRow {
  long long row;  // data row within the keyword
  long long slot; // position in the output arrays kept for it
};

struct inp_NodeRows {
  utl_Buffer<int> labels;    // one per row with at least one field
  utl_Buffer<double> coords; // 3 per row, 0 where not given
  // Rows with a value behind the fourth field (normals), a text, a quote, a number out of range or
  // too near to zero for all its digits, or a label that is no integer of at most nine digits.
  // Their slots hold what could be read, else 0.
  cow_List<inp_OddRow> odd;
  long long Count() const { return static_cast<long long>(labels.Size()); }
};

// label, x, y, z per row. Blank lines are no nodes. Appends to the result.
void inp_decodeNodes(const inp_DataArray& data, inp_NodeRows& result);

// The same without an array of all: pieces of a few thousand rows, still in the cache. What is read
// goes on while it is hot, and no memory is taken for more than a few pieces.
struct inp_NodePiece {
  std::span<int> labels;
  std::span<double> coords;  // 3 per row
  std::span<inp_OddRow> odd; // slots within the piece; rows of the keyword once it is taken
};
// prepare is called for pieces on all threads at once, take for one after the other in deck order.
void inp_streamNodes(const inp_DataArray& data,
                     const std::function<void(const inp_NodePiece&)>& prepare,
                     const std::function<void(const inp_NodePiece&)>& take);

struct inp_ElementRows {
  utl_Buffer<int> labels;     // one per element
  utl_Buffer<int> nodes;      // width per element; 0-padded behind an element's last node
  int width = 0;              // the most nodes per element found
  utl_Buffer<int> counts;     // nodes per element; empty when all have width nodes
  utl_Buffer<long long> rows; // first data row of each element; empty when element n is row n
  // Elements with a field that is no integer of at most nine digits (empty fields between others
  // too), with more nodes than the form allows, or with more than inp_mostElementNodes. The first
  // two keep what fits the form, the last keep no node; inp_elementFields has them whole.
  cow_List<inp_OddRow> odd;
  long long Count() const { return static_cast<long long>(labels.Size()); }
};

struct inp_ElementForm {
  int maxNodes = 0;       // a line that would pass it starts a new element
  int extraFields = 0;    // fields that are no nodes behind the label (kept as the last "nodes")
  int firstLineNodes = 0; // 0: no limit; else the most nodes the first line may hold
};

// All elements of the result have room for the widest one, so a single very wide one (a
// substructure's) must not be multiplied by a million narrow ones.
inline constexpr long long inp_mostElementNodes = 256;

// label, then nodes; a line that ends in a comma goes on with the next line as long as the nodes
// read so far plus that line's nodes stay within maxNodes (and extraFields). Blank lines count as
// little as comments. Appends to the result; rows are those of this keyword.
void inp_decodeElements(const inp_DataArray& data, const inp_ElementForm& form,
                        inp_ElementRows& result);

// The same by the piece, as for nodes.
struct inp_ElementPiece {
  std::span<int> labels;
  std::span<int> nodes;        // those of one element after those of the other
  std::span<const int> counts; // nodes of each element
  int width = -1;              // nodes per element when all have equally many
  std::span<inp_OddRow> odd;   // slots within the piece; rows of the keyword once it is taken
  long long firstRow = 0;      // of the keyword, once it is taken
  std::size_t slot = 0;        // where prepare may keep what it finds: utl_orderedBlocks
};
void inp_streamElements(const inp_DataArray& data, const inp_ElementForm& form,
                        const std::function<void(const inp_ElementPiece&)>& prepare,
                        const std::function<void(const inp_ElementPiece&)>& take);

// The general road for one element: its fields as written, the label first, from the data row it
// begins at to the one before nextRow.
cow_List<std::string_view> inp_elementFields(const inp_DataArray& data, const inp_ElementForm& form,
                                             long long row, long long& nextRow);

// Every integer field of all lines in order (empty fields skipped). False and the first offending
// row/col when some field is no integer in int's range; the result then holds what came before.
bool inp_decodeLabels(const inp_DataArray& data, utl_Buffer<int>& labels, long long& badRow,
                      int& badCol);

// Lines of exactly `width` numbers each, none of them empty or too near to zero (comment lines
// count as little as ever). False, and the values of no use, when any line is another: the caller
// then reads all of them by the general road.
bool inp_decodeRows(const inp_DataArray& data, int width, utl_Buffer<double>& values);
