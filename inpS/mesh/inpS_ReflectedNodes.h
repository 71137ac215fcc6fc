#pragma once

#include "base/cow_Value.h"

// Which node of an element its mirror image takes at each place (from 0), so that the image does
// not turn inside out, for an element of the type with so many nodes.
//
// Plane and solid elements, and surfaces in space, take the shape's order for it: the normal of a
// mirrored shell is the mirrored normal. A line in the plane that bounds something (shell of
// revolution, membrane, rigid or contact surface, face of a cavity) changes its ends, so that it
// stays on the same side; bars, beams, pipes, springs, gaskets and connectors have no side: their
// first node stays the first, with what hangs on it. Nodes of further Fourier planes follow those
// of the first plane; extra nodes of beams and what else stands behind the shape stay in place.
cow_List<int> inpS_reflectedPlaces(const cow_String& type, int nodes);

// Whether the type's numbering is known well enough for that. It is not for user elements,
// substructures and some contact elements of old, nor for nodes that gaskets may have behind those
// of their shape; their places stay as they are.
bool inpS_isReflectable(const cow_String& type, int nodes);
