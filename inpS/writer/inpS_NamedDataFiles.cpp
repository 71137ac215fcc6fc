#include "inpS/writer/inpS_NamedDataFiles.h"
#include "database/KvoObjDocument.h"
#include "database/KvoSimContext.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_ModelReader.h"
#include "inpS/forms/inpS_FormTable.h"
#include "parser/inp_DeckText.h"
#include "parser/inp_KeywordReader.h"

namespace {

// The parameters that name data files begin with F or I. Most texts have none that does behind a
// comma or at the begin of a line, and need not be read.
bool mayName(std::string_view text) {
  bool isNext = false;
  for (const char c : text) {
    if (c == ',' || c == '\n')
      isNext = true;
    else if (isNext && (c == 'f' || c == 'F' || c == 'i' || c == 'I'))
      return true;
    else if (c > ' ' && c < 127)
      isNext = false;
  }
  return false;
}

// Its keyword line, with what goes on behind it, as the reader of a deck takes them.
void look(cow_String text, cow_List<inpS_NamedDataFile>& named) {
  cow_List<wip_Message> ignored;
  const inp_DeckTextPtr deck = inp_DeckText::FromString(std::move(text), {});
  const inp_KeywordReader::Result read =
      inp_KeywordReader(ignored, ignored).Read(deck, deck->Begin(), 1);
  const int file = inp_KeywordReader::DataFileOf(*read.body);
  if (file < 0) return;
  const inp_Parameter& parameter = read.body->parameters[static_cast<std::size_t>(file)];
  named.push_back({read.body->name, parameter.value.AsString()});
}

// The keyword that a record is written as.
inp_KeywordEnm keywordOf(eds_RecordKind kind) {
  switch (kind) {
  case eds_RecordKind::NodeSet:
    return inp_KwNset;
  case eds_RecordKind::ElementSet:
    return inp_KwElset;
  case eds_RecordKind::Surface:
    return inp_KwSurface;
  case eds_RecordKind::Instance:
    return inp_KwInstance;
  case eds_RecordKind::Material:
    return inp_KwMaterial;
  default:
    break;
  }
  const inpS_Form* form = inpS_FormTable::Instance().Find(kind);
  return form ? form->keyword : inp_NullKeyword;
}

void lookAtKept(eds_RecordKind owner, std::string_view parameters, std::string_view lines,
                cow_List<inpS_NamedDataFile>& named) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keywordOf(owner));
  if (!row || !mayName(parameters)) return;
  look('*' + cow_String(row->name) + cow_String(parameters) + '\n' + cow_String(lines), named);
}

} // namespace

cow_List<inpS_NamedDataFile> inpS_namedDataFiles(const KvoObjDocument& document) {
  cow_List<inpS_NamedDataFile> named;
  const KvoSimContext context = document.Context();
  for (const KvoSimPosition& kept : context.GetRecords(eds_RecordKind::VerbatimKeyword))
    if (const std::string_view text = kept.DataRecord().GetString(eds_VerbatimKeyword_Text);
        mayName(text))
      look(cow_String(text), named);
  for (const KvoSimPosition& kept : context.GetRecords(eds_RecordKind::KeptPart)) {
    const KvoSimDataRecord record = kept.DataRecord();
    lookAtKept(record.GetReference(eds_KeptPart_Owner).Object().RecordKind(),
               record.GetString(eds_KeptPart_Parameters), record.GetString(eds_KeptPart_Lines),
               named);
  }
  for (const eds_RecordInfo* info : eds_ModelReader(document).Kinds()) {
    const inpS_Form* form = inpS_FormTable::Instance().Find(info->kind);
    if (!form || form->info->othersField < 0) continue;
    for (const KvoSimPosition& record : context.GetRecords(info->kind))
      lookAtKept(info->kind, record.DataRecord().GetString(form->info->othersField), {}, named);
  }
  return named;
}
