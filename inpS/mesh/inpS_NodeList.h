#pragma once

#include "base/cow_Value.h"
#include "base/utl_Buffer.h"
#include "database/eds_Array.h"
#include "parser/inp_Keyword.h"
#include <optional>
#include <vector>

class KvoObjLabeler;
class inp_Visitor;
class KvoSimPosition;
struct inpS_NodePiece;
struct inpS_SetDefinition;

// The nodes of one owner (part, instance, assembly, flat model) in order of first definition.
// Labels live in the node labeler; coordinates go into their stored array as they are read, so that
// a mesh of any size needs no memory of its own. Only where generators look at the nodes read
// before them are coordinates kept until the end.
class inpS_NodeList {
public:
  // base: ordinals below it belong to the instance's part, or to what a restart found, and cannot
  // be defined again here.
  void SetBase(long long base) { m_base = base; }
  long long Base() const { return m_base; }
  void KeepPoints() { m_keep = true; } // before any node comes

  // The keyword that the nodes come from. Those that it gives another place than they had, by more
  // than the tolerance times their largest coordinate, are told once all is read; a negative
  // tolerance: it is there to move them.
  void SetKeyword(const inp_Keyword& keyword, double tolerance);
  void TellRedefined(const KvoObjLabeler& labeler, int occurrence, inp_Visitor& messages);

  // A label already known is overwritten in place: the last definition of a label wins, its first
  // position is kept. The nodes also go into the set, if one is given. Labels of nodes below the
  // base are added to `refused`.
  void Merge(const inpS_NodePiece& nodes, KvoObjLabeler& labeler, int occurrence,
             const KvoSimPosition& owner, inpS_SetDefinition* set, cow_List<int>& refused);

  long long Count() const { return m_count; } // without those below the base

  // Once all keywords are read. The array is null when there are no nodes.
  void Finish();
  const eds_ArrayID& Array() const { return m_array; }
  // All coordinates, for those few who need points at random; read once. While nodes still come,
  // only if they are kept; valid until the next node.
  const double* Point(long long ordinal);
  const double* Normal(long long ordinal); // null: the node has none
  // A node that an element brings along; behind Finish.
  void AddGenerated(const double point[3], const KvoSimPosition& owner);
  void FinishGenerated();
  void Discard(); // the mesh failed: takes back what was stored

  // Normals by ascending ordinal within this list, the last one of each node; 3 values each.
  const utl_Buffer<int>& NormalOrdinals() const { return m_normalOrdinals; }
  const utl_Buffer<double>& Normals() const { return m_normals; }

private:
  struct Moved {
    int at; // within this list
    int keyword;
    double point[3];
  };
  // What one keyword gave another place.
  struct Redefined {
    inp_Keyword keyword;
    double tolerance = 0;
    long long count = 0;
    cow_List<int> some; // of them
  };
  int KeywordNumber();
  void Compare(const double old[3], const double given[3], int at, int keyword);
  void Open(const KvoSimPosition& owner);
  void AppendPoints(std::span<const double> points);
  void Scatter(const inpS_NodePiece& nodes, std::span<const int> ordinals, inpS_SetDefinition* set,
               cow_List<int>& refused);
  void FlushMoved();
  void LoadPoints();
  void MergeNormals(const inpS_NodePiece& nodes, std::span<const int> ordinals, bool allNew);
  void SortNormals();
  void IndexNormals();

  bool m_keep = false;
  long long m_base = 0;
  long long m_count = 0;
  std::optional<eds_ArrayWriter> m_writer;
  eds_ArrayID m_array;
  inp_Keyword m_keyword;
  double m_tolerance = -1;
  int m_keywordNumber = -1; // among the redefined; -1: not yet there
  cow_List<Redefined> m_redefined;
  std::vector<Moved> m_moved;  // nodes defined again, written together: they may lie anywhere
  utl_Buffer<double> m_points; // kept, or read by Point
  long long m_given = 0;       // without the generated ones
  utl_Buffer<int> m_ordinals;  // of the piece at hand
  utl_Buffer<int> m_normalOrdinals;
  utl_Buffer<double> m_normals;     // all zero: the node was defined again without one
  utl_Buffer<int> m_normalAt;       // by node: its place in m_normals, -1 without; by Normal
  std::size_t m_indexedNormals = 0; // so many of them stand in m_normalAt
};
