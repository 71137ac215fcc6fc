#pragma once

#include "database/KvoSimPosition.h"

// What the columns of a distribution hold: one field type for each, of the twelve that decks know,
// and so many numbers as that type has: a point (COORD3D) its three coordinates; SHELLSTIFF1 to
// SHELLSTIFF3 the blocks of a general shell section's symmetric 6 x 6 stiffness, its membrane part
// (6 numbers), its coupling part (9, by rows) and its bending part (6), 21 in all; any other one.
class inpS_DistributionTable {
public:
  inpS_DistributionTable() = default; // without columns
  // The record of a *DISTRIBUTION TABLE.
  explicit inpS_DistributionTable(const KvoSimPosition& record);
  // That of the table of a *DISTRIBUTION.
  static inpS_DistributionTable Of(const KvoSimPosition& distribution);
  explicit inpS_DistributionTable(const cow_List<cow_String>& fieldTypes);

  static int Components(int fieldType);
  static const cow_String& FieldTypeName(int fieldType);
  static int FieldTypeNamed(std::string_view name); // -1: none

  int NumFieldTypes() const { return static_cast<int>(m_fieldTypes.size()); }
  int FieldType(int column) const;         // its place in the list of the twelve
  cow_String ColumnName(int column) const; // "LENGTH"; "MODULUS1" where there are several
  int FirstComponent(int column) const;    // among all components of a row
  int FirstComponentOf(std::string_view fieldType) const; // of its first column; -1: there is none
  int TotalNumComponents() const;                         // of a row
  cow_List<cow_String> GetAllComponents() const;          // their names: "RATIO", "COORD3D1_2"

private:
  cow_List<int> m_fieldTypes;
};
