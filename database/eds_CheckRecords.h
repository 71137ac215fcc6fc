#pragma once

class KvoObjDocument;

// For a file that may come from anybody, before its records are followed: every reference leads to
// a record, every symbol and member is known, every array is as long as what refers to it says.
// Throws eds_DamagedFileException with the first fault. Does not read the arrays.
void eds_checkRecords(const KvoObjDocument& document);
