#pragma once

class KvoObjModel;
class utl_Stream;

// The model's amplitudes in the order of their definition.
void inpS_printAmplitudes(utl_Stream& out, const KvoObjModel& model);
