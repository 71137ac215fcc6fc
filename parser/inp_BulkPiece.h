#pragma once

#include "base/utl_Buffer.h"
#include "base/utl_Threads.h"
#include "parser/inp_FieldBatch.h"
#include "parser/inp_FieldScan.h"
#include <memory>

// What the decoders of nodes, elements and labels share.

inline constexpr int inp_largestLabel = 999999999;

// Fields that are not the plain integer the fast loop knows. False, and the value left alone, for
// what is no integer of int's range, or no label.
bool inp_readOtherInt(const char* begin, const char* end, int& value);
bool inp_readOtherLabel(const char* begin, const char* end, int& value);

// Numbers that are not of the plain form; an empty field is 0. False for what is no finite number.
bool inp_readOtherReal(const char* begin, const char* end, double& value);

inline bool inp_readReal(const char* begin, const char* end, double& value) {
  return inp_fastReal(begin, end, value) || inp_readOtherReal(begin, end, value);
}

inline bool inp_readLabel(const char* begin, const char* end, int& value) {
  return inp_fastSmallInt(begin, end, value) || inp_readOtherLabel(begin, end, value);
}

// The small integers of a stretch, in a buffer that goes from one to the next.
class inp_FieldValues {
public:
  // inp_smallInts.
  int* Of(const inp_Stretch& stretch) {
    m_values.Resize(stretch.count + inp_batchRoom);
    m_all = inp_smallInts(stretch, m_values.Data());
    return m_values.Data();
  }
  bool AreAll() const { return m_all; } // every field of the stretch is one

private:
  utl_Buffer<int> m_values;
  bool m_all = false;
};

// Room for so many more elements: exactly so much for one big block, and never less than half as
// much again, so that a thousand small blocks cost what they hold.
template <class T> void inp_reserveMore(utl_Buffer<T>& buffer, std::size_t count) {
  const std::size_t wanted = buffer.Size() + count;
  if (wanted <= buffer.Capacity()) return;
  const std::size_t half = buffer.Capacity() + buffer.Capacity() / 2;
  buffer.Reserve(wanted > half ? wanted : half);
}

// One decoder with its buffers per slot of utl_orderedBlocks, kept by the calling thread from one
// keyword to the next: fresh memory costs as much in page faults as the decode saves.
template <class Piece> class inp_PieceBuffers {
public:
  inp_PieceBuffers() : m_pieces(Kept()) {
    if (m_pieces.size() < utl_slotCount()) m_pieces.resize(utl_slotCount());
  }
  Piece& operator[](std::size_t slot) const {
    if (!m_pieces[slot]) m_pieces[slot] = std::make_unique<Piece>();
    return *m_pieces[slot];
  }

private:
  using Pieces = cow_List<std::unique_ptr<Piece>>;
  static Pieces& Kept() {
    static thread_local Pieces pieces;
    return pieces;
  }
  Pieces& m_pieces; // of the thread that asked; the others reach it through here
};
