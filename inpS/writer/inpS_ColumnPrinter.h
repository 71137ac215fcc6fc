#pragma once

#include "database/schema/eds_Form.h"
#include "inpS/writer/inpS_DeckScope.h"
#include <functional>

class utl_Stream;

// The data lines that a record keeps as bulk columns: printed by the piece, on all threads.
void inpS_printColumns(utl_Stream& out, const eds_FormInfo& form, const KvoSimPosition& record,
                       const inpS_DeckLabels& labels, const inpS_DeckScope& scope);

// The fields of single rows, column by column, as their lines show them. All that is given lives
// longer than what is returned.
std::function<cow_List<cow_String>(long long row)> inpS_rowTexts(const eds_FormInfo& form,
                                                                 const KvoSimPosition& record,
                                                                 const inpS_DeckLabels& labels,
                                                                 const inpS_DeckScope& scope);
