#pragma once

#include "database/eds_ModelReader.h"

// Fields of records by their identifiers, defaults put in where nothing was set.

cow_String inps_textOf(const eds_ModelReader& model, eds_FieldID field, int64_t id);
int64_t inps_intOf(const eds_ModelReader& model, eds_FieldID field, int64_t id);
bool inps_boolOf(const eds_ModelReader& model, eds_FieldID field, int64_t id);
eds_ObjectID inps_refOf(const eds_ModelReader& model, eds_FieldID field, int64_t id);

// The field set to its default counts as one never set.
bool inps_isDefault(const eds_FieldInfo& field, const eds_FieldValue& value);
bool inps_isUnset(const eds_FieldValue& value); // or set to nothing
// A value on one line, texts in quotes. References are described; arrays and component sets are
// only named.
cow_String inps_valueText(const eds_ModelReader& model, const eds_FieldInfo& field,
                          const eds_FieldValue& value);
cow_String inps_quoted(std::string_view text);
cow_String inps_realText(double value);
