#pragma once

#include "base/utl_InstructionSet.h"
#include "parser/inp_FieldBatch.h"

// What inp_FieldBatch.h promises, for machines with AVX2.

#ifdef UTL_HAS_AVX2_CODE

UTL_AVX2 inp_SeparatorCount inp_findSeparatorsAvx2(const char* begin, const char* end,
                                                   std::uint32_t* places, std::uint32_t* feeds);
UTL_AVX2 bool inp_smallIntsAvx2(const inp_Stretch& stretch, int* values);
UTL_AVX2 std::size_t inp_takeNodeLinesAvx2(const inp_Stretch& stretch, inp_LinePlace& at,
                                           int* labels, double* coords);

#endif
