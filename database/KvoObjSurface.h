#pragma once

#include "database/KvoSimCSet.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Array.h"
#include "database/eds_MemberSet.h"

// The vocabularies of surfaces; the numbers are those of the schema's symbols.

enum class eds_SurfaceType : int { Element, Node, Segments, Cylinder, Revolution, Cutting };

// How a surface comes about: from data of its own or from other surfaces.
enum class eds_SurfaceOperation : int { Defined, Union, Intersection, Difference, CropIn, CropOut };

enum class eds_SurfaceFace : int {
  Whole, // both sides of a shell, a line element all around; in a piece: no identifier given
  S1,    // faces of solids, edges of plane elements
  S2,
  S3,
  S4,
  S5,
  S6,
  S7,
  S8,
  SPos, // sides of shells and the like
  SNeg,
  E1, // edges of shells and plane elements
  E2,
  E3,
  E4,
  End1, // ends of line elements
  End2,
  Edge // every free edge of the shells named; in a piece only
};
inline constexpr int eds_surfaceFaceCount = 18;

// The elements that have one face in a surface. Ordinals are part ordinals for a part's surface,
// else flat ordinals of the mesh; ascending.
struct KvoSurfaceFaces {
  eds_SurfaceFace face = eds_SurfaceFace::Whole;
  eds_MemberSet elements;
};

// The area of a surface as its nodes share it.
struct KvoSurfaceNodalAreas {
  eds_MemberSet nodes; // ordinals as above, ascending
  eds_ArrayID areas;   // a double for each node
};

// What data lines of a surface say, as far as it matters for writing them back.
struct KvoSurfacePiece {
  eds_SurfaceFace face = eds_SurfaceFace::Whole;
  KvoSimPosition source;   // the set or surface named; null: members are listed by label
  KvoSimPosition instance; // by which the name is scoped; null: it is not
  KvoSimCSetID members;    // listed, in their order
  double area = 1;         // of each node
  eds_ArrayID areas;       // or one for each member
};

// The kinds of segments of an analytical surface. They are stored as rows of eds_segmentWidth
// numbers: the kind, then its points as the deck gives them: the point reached (of a parabola its
// middle point first), of an arc then its centre.
enum class eds_SegmentKind : int { Start, Line, Arc, Parabola };
inline constexpr int eds_segmentWidth = 5;

// A named surface of one owner (a part, an instance, the assembly, the model).
class KvoObjSurface {
public:
  KvoObjSurface() = default;
  explicit KvoObjSurface(const KvoSimPosition& position);
  // A new surface, entered with its owner. Internal surfaces have names of their own.
  KvoObjSurface(const KvoSimPosition& owner, std::string_view name, bool internal);

  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  cow_String Name() const;
  KvoSimPosition Owner() const;
  bool IsInternal() const;
  eds_SurfaceType Type() const;
  void SetType(eds_SurfaceType type);
  bool IsAnalytical() const; // segments, cylinder or revolution
  eds_SurfaceOperation Operation() const;
  void SetOperation(eds_SurfaceOperation operation);

  // What it comes to: of an element surface its faces, one entry for each identifier, no face
  // twice; of a node surface its nodes.
  cow_List<KvoSurfaceFaces> Faces() const;
  void AddFaces(eds_SurfaceFace face, const KvoSimCSetID& elements);
  eds_MemberSet Nodes() const;
  void SetNodes(const KvoSimCSetID& nodes);

  // Of an element surface its area as its nodes share it: a drawer of a distribution over nodes.
  bool HasNodalAreas() const;
  KvoSurfaceNodalAreas NodalAreas() const; // empty when it has none
  void SetNodalAreas(KvoSimDistribution all, const KvoSimCSetID& nodes, const eds_ArrayID& areas);

  cow_List<KvoSurfacePiece> Pieces() const;
  void AddPiece(const KvoSurfacePiece& piece);

  // Points of axes, plane or box as the deck gives them, 3 numbers each; segments as rows.
  cow_List<double> Points() const;
  void SetPoints(std::span<const double> coordinates);
  cow_List<double> Segments() const;
  void SetSegments(std::span<const double> rows);

  // The surfaces of one owner, internal ones among them, in the order in which they were made.
  static cow_List<KvoSimPosition> OfOwner(const KvoSimPosition& owner);

private:
  KvoSimPosition m_position;
};
