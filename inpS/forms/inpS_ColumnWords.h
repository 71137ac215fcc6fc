#pragma once

#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Form.h"
#include "inpS/forms/inpS_NameCodes.h"
#include <unordered_map>

// The words of one bulk column, each once, in the order in which they came: -1 in the column is the
// first, -2 the second. What is no name but a number that the column takes stays as it is.
class inpS_ColumnWords {
public:
  // The codes of a piece's names become those of words.
  void TranslateNames(const inp_ColumnPiece& piece, std::span<int> slots);
  // As written. inpS_noTarget: it holds what the store keeps none of; blank: it is a number that is
  // passed over.
  int Of(std::string_view word);
  // Where words may take the place of numbers, a number is no word.
  void PassOverNumbers() { m_passesOver = true; }
  bool HasPassedOver() const { return m_hasPassedOver; }
  static bool IsNumber(std::string_view word);
  // Into the field of the record, with commas between.
  void Store(KvoSimDataRecord record, int field) const;
  const cow_List<cow_String>& All() const { return m_words; }
  static cow_List<cow_String> Stored(const KvoSimDataRecord& record, int field);

private:
  cow_List<cow_String> m_words;
  std::unordered_map<cow_String, int> m_places; // of words as they are kept
  inpS_NameCodes m_codes;
  bool m_passesOver = false;
  bool m_hasPassedOver = false;
};

// Whether the last column is of texts and the one before it of reals: a text may take the place of
// the real, as the name of a film property that of its coefficient.
bool inpS_endsInTexts(const cow_List<eds_FormItem>& columns);
