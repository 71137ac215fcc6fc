#pragma once

#include "database/KvoObjLabeler.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include <optional>

// What lives through one conversion: the labelers, made by their phases.
struct inpS_Inp2Sim::Labelers {
  std::optional<KvoObjLabeler> nodes;
  std::optional<KvoObjLabeler> elements;
  bool holdUnstored = false; // the mesh failed: they know labels that the database does not hold
  bool hasSurfaces = false;  // of this deck: a restart looks twice
};

// One row of the list of phases. The tag names the marks of the resource monitor; a phase whose
// result is not counted cannot fail the conversion. A list ends in a row without a tag.
struct inpS_Inp2Sim::Phase {
  const char* tag;
  bool (*run)(inpS_Inp2Sim& driver, Labelers& labelers);
  bool counted;
};
