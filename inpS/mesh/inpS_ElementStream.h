#pragma once

#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include <functional>

struct inp_ElementPiece;

// Reads the data lines of *ELEMENT for a type with a fixed number of nodes, by the piece: node
// labels become ordinals while they are in the cache. Faulty elements are reported as by the
// topology reader.
class inpS_ElementStream {
public:
  struct Piece {
    std::span<const int> labels;
    std::span<const int> ordinals;        // nodes per element for each, -1 where open
    std::span<const inpS_OpenEntry> open; // entries of this piece
  };
  using Sink = std::function<void(const Piece&)>;

  inpS_ElementStream(const inpS_ElementParameters& type, inp_Visitor& messages)
      : m_type(type), m_messages(messages) {}

  // The type's elements are all alike and need nothing completed.
  static bool Serves(const inpS_ElementParameters& type);

  void Read(const inp_Keyword& keyword, const KvoObjLabeler& nodes, int occurrence,
            const Sink& sink);

private:
  struct Found {
    cow_List<inpS_OpenEntry> open;
    cow_List<int> labels;
  };
  // What can be read of a piece with a fault: as many node labels for each as the type has.
  struct Readable {
    cow_List<int> labels;
    cow_List<int> counts; // nodes that are given
    cow_List<int> nodes;
  };
  void Translate(const inp_ElementPiece& piece, const KvoObjLabeler& nodes, int occurrence,
                 Found& found) const;
  static void Translate(std::span<const int> elements, std::span<int> all,
                        const KvoObjLabeler& nodes, int occurrence, Found& found);
  Readable ReadFaulty(const inp_Keyword& keyword, const inp_ElementPiece& piece);
  void Add(int label, std::span<const int> nodes, Readable& readable);

  const inpS_ElementParameters& m_type;
  inp_Visitor& m_messages;
  inpS_FaultyElements m_faulty;
};
