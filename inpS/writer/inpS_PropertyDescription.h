#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/inpS_Export.h"

// A property of a material or gasket behaviour, or an amplitude, as a reader of decks knows it.
struct inpS_PropertyDescription {
  struct Column {
    cow_String name;
    bool isIndependent = false; // what a row is given for, such as a strain
  };
  KvoSimPosition property;  // null: a sub-option without data, which has no record of its own
  int depth = 0;            // 1: sub-option of the one before it with depth 0, and so on
  cow_String variant;       // "*ELASTIC, TYPE=LAMINA"
  cow_String parameters;    // ", MODULI=INSTANTANEOUS", or nothing
  cow_List<Column> columns; // of its table, before temperature and field variables
};

// The properties of a material or gasket behaviour, each followed by its sub-options.
INPS_EXPORT cow_List<inpS_PropertyDescription> inpS_describeProperties(const KvoSimPosition& owner);

// An amplitude in the same words.
struct inpS_AmplitudeDescription {
  cow_String keyword; // "*AMPLITUDE, NAME=A, DEFINITION=PERIODIC"
  // Times and magnitudes in turn, or the coefficients of cosine and sine of a periodic one.
  cow_List<double> pairs;
};
INPS_EXPORT inpS_AmplitudeDescription inpS_describeAmplitude(const KvoSimPosition& amplitude);
