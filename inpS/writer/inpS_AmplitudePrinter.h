#pragma once

#include <functional>

class KvoObjModel;
class KvoSimPosition;
class utl_Stream;

// The model's amplitudes in the order of their definition, each followed by the texts kept with it.
void inpS_printAmplitudes(utl_Stream& out, const KvoObjModel& model,
                          const std::function<void(const KvoSimPosition&)>& printTexts);
