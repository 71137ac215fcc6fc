#pragma once

#include "inpS/keywords/inpS_RecordParameters.h"

// One row: a definition of *AMPLITUDE and the record it is kept as; read and printed by it.
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
  cow_List<int> lineFields;
  int timeSpan;
  int name;
  inpS_ParameterBindings parameters{};
};

const cow_List<inpS_AmplitudeForm>& inpS_amplitudeForms();
const inpS_AmplitudeForm* inpS_amplitudeForm(const cow_String& definition); // bare word
// The form that a record was read by.
const inpS_AmplitudeForm* inpS_amplitudeForm(const KvoSimDataRecord& record);
