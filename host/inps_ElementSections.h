#pragma once

#include "database/KvoObjDocument.h"
#include "host/inps_ModelSummary.h"
#include <functional>

// Which elements of the flat mesh have which section, as the section assignments say.

// Calls take(assignment, first flat ordinal, how many) for elements that follow one another. Where
// two assignments name an element, the later one holds and comes later.
void inps_forAssignedElements(const KvoObjDocument& document,
                              const std::function<void(const KvoSimPosition& assignment,
                                                       int64_t first, int64_t count)>& take);

// Whether elements of a type can do nothing without a section. Not: rigid and mesh-only ones, the
// inner ones of contact, couplings and fasteners, which keywords of their own describe, fluid
// elements of faces and lines (of cavities, links, pipes), and types that no table knows (user
// elements, substructures), which may need none.
bool inps_needsSection(const cow_String& type);

// The elements without a section by type, in the order of the mesh; nothing where the model is a
// mesh alone, without sections, used or not, materials and steps.
inps_ModelSummary::Counts inps_elementsWithoutSection(const KvoObjDocument& document);
// "12 elements have no section (C3D8R 10, S4R 2)"; empty where none lacks one.
cow_String inps_withoutSectionText(const inps_ModelSummary::Counts& without);
