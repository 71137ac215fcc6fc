#pragma once

#include "inpS/forms/inpS_FormPrinter.h"

class KvoObjModel;

void inpS_printAmplitude(utl_Stream& out, const KvoSimPosition& amplitude,
                         const inpS_KeptParts& parts);
// The model's amplitudes in the order of their definition, each followed by what stands under it.
void inpS_printAmplitudes(utl_Stream& out, const KvoObjModel& model, const inpS_KeptParts& parts,
                          const inpS_FormPrinting& printing);
