#pragma once

#include "base/aio_ostream.h"
#include "host/inps_Json.h"
#include "inpS/writer/inpS_SectionDescription.h"

class inps_NameChoice;

// The sections of a model as a table: kind, name, element set, material, orientation, elements,
// thickness (a number; "distribution" or "nodal" where it varies).
void inps_printSections(aio_ostream& out, const cow_List<inpS_SectionDescription>& sections,
                        const inps_NameChoice& choice);
// How many there are of each kind, with their elements.
void inps_printSectionKinds(aio_ostream& out, const cow_List<inpS_SectionDescription>& sections);

// [{"kind", "name", "set", "material", "orientation", "plies", "elements", "thickness"}]: texts are
// empty and numbers null where a section has none; thickness is a number or one of the two words.
inps_Json inps_jsonOfSections(const cow_List<inpS_SectionDescription>& sections,
                              const inps_NameChoice& choice);
// {kind: {"sections", "elements"}}
inps_Json inps_jsonOfSectionKinds(const cow_List<inpS_SectionDescription>& sections);
