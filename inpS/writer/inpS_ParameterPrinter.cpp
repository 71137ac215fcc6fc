#include "inpS/writer/inpS_ParameterPrinter.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/writer/inpS_PrintPrimitives.h"

void inpS_printParameters(utl_Stream& out, std::span<const inpS_ParameterRow> rows,
                          const KvoSimDataRecord& record) {
  for (const inpS_ParameterRow& row : rows) {
    if (row.readOnly || (record.IsMemberNull(row.field) && !row.always)) continue;
    switch (row.codec) {
    case inpS_Codec::Flag:
      if (record.GetBool(row.field)) out << ", " << row.deckName;
      break;
    case inpS_Codec::Real:
      out << ", " << row.deckName << '=' << record.GetDouble(row.field);
      break;
    case inpS_Codec::Word: {
      const cow_String word = inpS_wordAt(row, record.GetSymb(row.field));
      if (!word.empty()) out << ", " << row.deckName << '=' << word;
      break;
    }
    case inpS_Codec::Choice:
      out << ", " << row.deckName << '=' << record.GetString(row.field);
      break;
    case inpS_Codec::Name:
      out << ", " << row.deckName << '=' << inpS_quoted(record.ReturnString(row.field));
      break;
    }
  }
}
