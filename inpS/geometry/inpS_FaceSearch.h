#pragma once

#include "base/utl_Buffer.h"
#include "parser/inp_Shape.h"
#include <cstdint>
#include <vector>

// Finds the faces that one element alone has, among the elements given. Faces are the same when
// they have the same corners, in any order and whatever the elements' types: midside nodes do not
// count. A corner named twice counts once, so a collapsed quadrilateral meets a triangle; a face
// that has shrunk to a line (an edge shrunk to a point) is none, and so is one that lacks a corner.
//
// Time is linear in the number of faces, whatever the valence of nodes; memory is the corners given
// and some 3 bytes a face.
class inpS_FaceSearch {
public:
  // `elements` elements of one shape: `corners` holds shape.corners nodes for each, counted from
  // `nodeBase`; a negative one is absent. It must live until the search is gone. `lists` is the
  // shape's faces, or its edges where edges are searched.
  void Add(const inp_Shape& shape, std::span<const inp_ShapeList> lists,
           std::span<const int32_t> corners, int64_t nodeBase);

  void Run();

  // Of the n-th elements added: one byte for each element and list (element · lists + list), not 0
  // where the face is free.
  std::span<const unsigned char> Free(std::size_t n) const;

private:
  struct Face { // columns of its corners
    int count = 0;
    int column[4] = {};
  };
  struct Block {
    std::vector<Face> faces;
    std::span<const int32_t> corners;
    int width = 0;
    int64_t elements = 0;
    int64_t nodeBase = 0;
    int64_t firstElement = 0; // its elements and faces count from here
    uint32_t firstSlot = 0;
  };
  struct Entry {
    uint32_t slot;
    uint32_t hash;
  };
  struct Piece { // a run of elements, the work of one call
    int64_t first;
    int64_t end;
    // In each partition: how many faces it has there, then where its next entry goes.
    std::vector<uint32_t> places;
    bool isInRound = false;
  };
  struct Round { // partitions that are worked on together
    std::size_t first;
    std::size_t end;
  };
  class Table;

  template <class Use> void ForEachBlock(const Piece& piece, Use use) const;
  void Cut();
  void ChoosePartitions();
  void Count(Piece& piece) const;
  Round Place(std::size_t first);
  void Scatter(Piece& piece, const Round& round);
  void Match(std::size_t partition, const Round& round, Table& table);
  std::size_t PartitionOf(uint32_t least) const { return (least - m_least) >> m_shift; }
  struct Key;
  static bool Read(const Block& block, const int32_t* corners, const Face& face, Key& key);
  Key KeyOf(uint32_t slot) const;

  std::vector<Block> m_blocks;
  std::vector<Piece> m_pieces;
  std::vector<uint32_t> m_partitionEnds; // among the entries of its round
  utl_Buffer<Entry> m_entries;           // of one round, one partition after the other
  utl_Buffer<unsigned char> m_free;
  int64_t m_elements = 0;
  uint64_t m_slots = 0;
  uint32_t m_least = 0; // node
  int m_shift = 0;
};
