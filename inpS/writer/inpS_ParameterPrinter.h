#pragma once

#include "inpS/keywords/inpS_ParameterBinding.h"

class utl_Stream;

// Writes the parameters of a keyword, each behind a comma, from the rows that read them.
void inpS_printParameters(utl_Stream& out, std::span<const inpS_ParameterRow> rows,
                          const KvoSimDataRecord& record);
