// Any bytes are converted in memory. From a deck without errors must come a deck without errors and
// the same model, record by record, and the same deck again, byte for byte. What a deck with errors
// leaves of a model is sound; it is written, and that deck takes its place. Kept texts count the
// blocks before them, and a block that holds nothing is not written: only their text has to be the
// same.

#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "base/utl_OutputFile.h"
#include "base/utl_Stream.h"
#include "base/utl_Threads.h"
#include "database/KvoObjDocument.h"
#include "database/eds_ModelReader.h"
#include "host/inps_ModelDiff.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace {

const std::filesystem::path& deckPath() {
  static const std::filesystem::path path =
      utl_temporaryBeside(std::filesystem::temp_directory_path() / "inps_fuzz.inp");
  return path;
}

// Uncaught: its text is what the fuzzer shows.
struct Wrong : std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class Outcome { NoModel, WithErrors, Clean };

Outcome convert(const cow_String& deck, const KvoObjDocument& document) {
  utl_OutputFile file(deckPath());
  file.Write(deck.data(), deck.size());
  file.Close();
  inpS_Inp2Sim driver(utl_pathText(deckPath()), "");
  const bool readable = driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() &&
                        driver.Reorganize() && driver.BuildInventory();
  if (!readable) return Outcome::NoModel;
  const Outcome outcome = driver.Convert(document) ? Outcome::Clean : Outcome::WithErrors;
  for (const cow_String& fault : eds_checkModel(document)) throw Wrong(fault);
  return outcome;
}

cow_String written(const KvoObjDocument& document) {
  cow_String deck;
  utl_Stream out(&deck);
  std::ostringstream diagnostics;
  inpS_Sim2Inp(document, 1, false, "", nullptr, diagnostics).Print(out);
  out.Flush();
  return deck;
}

// Other files of the machine are none of the fuzzer's business.
bool namesFiles(const cow_String& deck) {
  for (const char c : {'/', '\\'})
    if (deck.find(c) != cow_String::npos) return true;
  return false;
}

// The deck of a model that came without errors.
void comesBack(const KvoObjDocument& first, const cow_String& once) {
  const KvoObjDocument second = KvoObjDocument::InMemory();
  utl_ASSERT(convert(once, second) == Outcome::Clean);
  std::stringstream differences;
  inps_diffModels(first, second, differences);
  for (cow_String line; std::getline(differences, line);)
    if (line.find("verbatim_keyword") == cow_String::npos) throw Wrong(differences.str());
  utl_ASSERT(written(second) == once);
}

} // namespace

// On one thread the same seed tries much the same inputs, and no time goes into waking others.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  utl_setThreadCount(1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  cow_String deck(reinterpret_cast<const char*>(bytes), size);
  if (namesFiles(deck)) return 0;
  for (int generation = 0; generation < 2; ++generation) {
    const KvoObjDocument document = KvoObjDocument::InMemory();
    const Outcome outcome = convert(deck, document);
    if (outcome == Outcome::NoModel) return 0;
    deck = written(document);
    if (outcome == Outcome::Clean) {
      comesBack(document, deck);
      return 0;
    }
  }
  return 0;
}
