#pragma once

#include "database/KvoSimPosition.h"

class utl_Stream;
struct inpS_KeptPart;

// A record of a form as the keyword that it was read from, or could be. Nothing for what is no
// form's. beside: what is kept beside it.
void inpS_printForm(utl_Stream& out, const KvoSimPosition& record, const inpS_KeptPart& beside);
