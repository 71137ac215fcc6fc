#pragma once

#include "database/schema/eds_Schema.h"
#include <span>
#include <vector>

// Views that join what a reader of the file wants at once: labels, the flat mesh, sets, the tables
// of materials, what acts in each step. A finished file has all of them, whatever it holds: one
// that needs a table which is not there has its columns and no row, so that nobody has to look
// first.
struct eds_ReaderView {
  cow_String name;
  cow_String select; // behind CREATE VIEW name AS
};

std::vector<eds_ReaderView> eds_readerViews(std::span<const eds_RecordInfo* const> kinds);
