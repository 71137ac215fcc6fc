#pragma once

#include "parser/inp_Shape.h"
#include <span>
#include <string_view>

// What sections have to know of a type: which of a section's forms serves it.
enum class inp_SectionDimension : unsigned char {
  Unknown = 0, // has no solid section
  Truss = 1,
  Solid2D = 2,
  Solid3D = 3,
};

// Family facts of an element type, as bits.
enum inp_ElementFlags : unsigned {
  inp_ElemNone = 0,
  inp_ElemBeam = 1u << 0,         // beam, pipe, elbow or frame
  inp_ElemShell = 1u << 1,        // shell or continuum shell
  inp_ElemMembrane = 1u << 2,     // membrane or surface element
  inp_ElemTruss = 1u << 3,        // truss or link
  inp_ElemSolid = 1u << 4,        // continuum
  inp_ElemAxisymmetric = 1u << 5, // in the r-z plane, with or without twist or Fourier modes
  inp_ElemGasket = 1u << 6,
  inp_ElemCohesive = 1u << 7,
  inp_ElemConnector = 1u << 8,
  inp_ElemAcoustic = 1u << 9, // carries acoustic pressure alone
  inp_ElemInfinite = 1u << 10,
  inp_ElemFluid = 1u << 11,    // flow, hydrostatic cavity or pipe flow
  inp_ElemRigid = 1u << 12,    // rigid or analytical surface
  inp_ElemSpring = 1u << 13,   // spring, dashpot, joint or gap
  inp_ElemMass = 1u << 14,     // mass, rotary inertia or heat capacitance
  inp_ElemContact = 1u << 15,  // interface, slide line or tube contact
  inp_ElemMeshOnly = 1u << 16, // mesh without physics
  inp_ElemElectromagnetic = 1u << 17,
  inp_ElemThermal = 1u << 18,      // has temperature degrees of freedom
  inp_ElemDisplacement = 1u << 19, // has displacement degrees of freedom
  inp_ElemCoupling = 1u << 20,     // distributing coupling, fastener, drag chain
  inp_ElemThreeD = 1u << 21,       // makes the model three-dimensional
  // Makes it so in an explicit analysis. Of the types that serve both spaces rotary inertia alone
  // does: its data are a full tensor about three axes, and explicit dynamics turns the node about
  // all of them. A mass, spring or dashpot acts along what its nodes have anyway.
  inp_ElemThreeDExplicit = 1u << 22,
};

// One row of the element type table.
struct inp_ElementInfo {
  std::string_view name;
  int minNodes;
  int maxNodes;
  inp_ShapeKind shape; // without a beam's extra node and without further Fourier planes
  int space;           // dimensions of the space it needs: 2, 3, or 0 where it serves both
  int dimension;       // of its own geometry: 0 point, 1 line, 2 surface, 3 volume
  inp_SectionDimension section;
  unsigned flags; // inp_ElementFlags

  bool Is(inp_ElementFlags flag) const { return (flags & flag) != 0; }
};

std::span<const inp_ElementInfo> inp_elementTable(); // in table order
