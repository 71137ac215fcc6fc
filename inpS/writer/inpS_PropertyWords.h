#pragma once

#include "database/KvoSimPosition.h"
#include "parser/inp_KeywordEnm.h"

class utl_Stream;
struct inpS_Form;

// Property records in the words of decks, from the rows that read and print them.

// "*ELASTIC, TYPE=LAMINA": the keyword and what chooses the row, but for what the parameters kept
// beside it have.
void inpS_printVariant(utl_Stream& out, const inpS_Form& behavior, std::string_view kept = {});
// ", MODULI=INSTANTANEOUS": its other parameters.
void inpS_printOtherParameters(utl_Stream& out, const inpS_Form& behavior,
                               const KvoSimDataRecord& record);

// What stands under a property: flags of its record, the material's potential, its sub-options, in
// the order in which decks have them.
struct inpS_PropertySuboptions {
  cow_List<inp_KeywordEnm> flags; // keywords without data
  cow_List<KvoSimPosition> properties;
};
// potentials: those of the property's material.
inpS_PropertySuboptions inpS_suboptionsOf(const KvoSimPosition& property,
                                          const cow_List<KvoSimPosition>& potentials);

// The properties of a material or gasket behaviour without the potentials, which stand under them.
struct inpS_OwnedProperties {
  explicit inpS_OwnedProperties(const KvoSimPosition& owner);
  cow_List<KvoSimPosition> properties;
  cow_List<KvoSimPosition> potentials;
};
