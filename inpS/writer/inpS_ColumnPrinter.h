#pragma once

#include "database/schema/eds_Form.h"
#include "inpS/writer/inpS_DeckScope.h"

class utl_Stream;

// The data lines that a record keeps as bulk columns: printed by the piece, on all threads.
void inpS_printColumns(utl_Stream& out, const eds_FormInfo& form, const KvoSimPosition& record,
                       const inpS_DeckLabels& labels, const inpS_DeckScope& scope);
