#pragma once

#include "inpS/forms/inpS_FormTable.h"

// A definition of *AMPLITUDE: its form, and what its values are; read and printed by it.
struct inpS_AmplitudeForm {
  enum class Data : unsigned char {
    None,         // nothing behind the first line
    Pairs,        // time, magnitude, ...; columns of the amplitude's table
    Magnitudes,   // at equal intervals; the same columns
    Coefficients, // pairs behind the first line, one term each
  };
  const char* definition; // as it is printed
  eds_RecordKind kind;
  Data data;
  // The fields that the first line's values go to, in the order of the line.
  cow_List<int> lineFields{};
  int timeSpan = 0;
  int name = 0;
  inpS_ParameterBindings parameters{};
};

const cow_List<inpS_AmplitudeForm>& inpS_amplitudeForms();
const inpS_AmplitudeForm* inpS_amplitudeForm(const cow_String& definition); // bare word
// The form that a record was read by.
const inpS_AmplitudeForm* inpS_amplitudeForm(const KvoSimDataRecord& record);
