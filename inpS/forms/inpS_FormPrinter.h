#pragma once

#include "database/KvoSimPosition.h"
#include <functional>

class utl_Stream;
struct eds_FormInfo;
struct inpS_KeptPart;

// Prints the lines that a record keeps as bulk columns.
using inpS_PrintColumns =
    std::function<void(const eds_FormInfo& form, const KvoSimPosition& record)>;

// A record of a form as the keyword that it was read from, or could be. Nothing for what is no
// form's. beside: what is kept beside it.
void inpS_printForm(utl_Stream& out, const KvoSimPosition& record, const inpS_KeptPart& beside,
                    const inpS_PrintColumns& printColumns);
