#include "host/inps_OpenModel.h"

#include "base/utl_File.h"
#include "database/eds_CheckRecords.h"
#include "host/inps_Input.h"
#include "host/inps_Outcome.h"
#include "host/inps_Run.h"
#include "host/inps_Terminal.h"
#include "inpS/writer/inpS_NamedDataFiles.h"
#include <algorithm>
#include <fstream>

namespace {

cow_String beginOf(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return {}; // a pipe is read only once
  cow_String begin(4096, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  begin.resize(static_cast<std::size_t>(file.gcount()));
  return begin;
}

// A deck's first word is a keyword or a comment.
bool beginsAsDeck(const std::filesystem::path& path) {
  const cow_String begin = beginOf(path);
  const std::size_t mark = begin.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  const std::size_t first = begin.find_first_not_of(" \t\r\n", mark);
  return first != cow_String::npos && begin[first] == '*';
}

bool isNamedAsModel(const std::filesystem::path& path) {
  cow_String extension = utl_pathText(path.extension());
  std::ranges::transform(extension, extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  });
  return extension == ".sim";
}

// As a user would type it; a deck that is named like a model gives its model another name.
cow_String convertCommand(const inps_Input& input) {
  if (input.IsStandardInput()) return "inps convert - -o MODEL.sim";
  const std::filesystem::path& deck = input.File();
  cow_String command = "inps convert " + inps_shellWord(utl_pathText(deck));
  if (!isNamedAsModel(deck)) return command;
  std::filesystem::path target = deck.stem();
  target += "-model.sim";
  return command + " -o " + inps_shellWord(utl_pathText(target));
}

} // namespace

bool inps_beginsAsModel(const std::filesystem::path& path) {
  return beginOf(path).starts_with("SQLite format 3");
}

bool inps_isModelFile(const std::filesystem::path& path) {
  return isNamedAsModel(path) || inps_beginsAsModel(path);
}

KvoObjDocument inps_openModel(const inps_Input& input) {
  const std::filesystem::path& file = input.File();
  if (beginsAsDeck(file))
    throw utl_FileException("cannot open", file,
                            "it is a deck and not a model; convert it first: " +
                                convertCommand(input));
  KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  eds_checkRecords(document);
  return document;
}

void inps_warnOfOutcome(const KvoObjDocument& document, const inps_Input& input, inps_Run& run) {
  const auto warn = [&](cow_String text) {
    wip_Message message(std::move(text));
    message.place.file = input.Name();
    run.Reporter().Warning(message);
  };
  if (!document.IsFinished())
    warn("the conversion that made this model did not finish; it may hold a part of its deck only");
  const inps_Outcome outcome = inps_outcomeOf(document);
  if (outcome.errors > 0)
    warn("this model was made from a deck with errors and does not hold all of it (" +
         outcome.Text() + ")");
}

void inps_warnOfNamedFiles(const KvoObjDocument& document, const inps_Input& input, inps_Run& run) {
  for (const inpS_NamedDataFile& named : inpS_namedDataFiles(document)) {
    wip_Message message("a deck written from this model opens the file \"" + named.file +
                        "\" when it is read, for *" + named.keyword +
                        " is kept with that name; a conversion keeps the file's lines instead");
    message.place.file = input.Name();
    run.Reporter().Warning(message);
  }
}

KvoObjDocument inps_openModel(const inps_Input& input, inps_Run& run) {
  KvoObjDocument document = inps_openModel(input);
  inps_warnOfOutcome(document, input, run);
  return document;
}
