#pragma once

#include <functional>

class KvoObjModel;
class KvoSimPosition;
class inpS_KeptParts;
class utl_Stream;

void inpS_printAmplitude(utl_Stream& out, const KvoSimPosition& amplitude,
                         const inpS_KeptParts& parts);
// The model's amplitudes in the order of their definition, each followed by the texts kept with it.
void inpS_printAmplitudes(utl_Stream& out, const KvoObjModel& model, const inpS_KeptParts& parts,
                          const std::function<void(const KvoSimPosition&)>& printTexts);
