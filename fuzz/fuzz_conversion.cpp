// Any bytes are converted in memory. Where that gives a model, the deck written from it must
// convert without error to the same model, record by record, and be written a second time byte for
// byte the same. Kept texts count the blocks before them, and a block that holds nothing is not
// written: only their text has to be the same.

#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
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

bool convert(const cow_String& deck, const KvoObjDocument& document) {
  utl_OutputFile file(deckPath());
  file.Write(deck.data(), deck.size());
  file.Close();
  inpS_Inp2Sim driver(utl_pathText(deckPath()), "");
  return driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() && driver.Reorganize() &&
         driver.BuildInventory() && driver.Convert(document);
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

// Uncaught: its text is what the fuzzer shows.
struct Different : std::runtime_error {
  using std::runtime_error::runtime_error;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const cow_String deck(reinterpret_cast<const char*>(bytes), size);
  if (namesFiles(deck)) return 0;
  const KvoObjDocument first = KvoObjDocument::InMemory();
  if (!convert(deck, first)) return 0;
  const cow_String once = written(first);
  const KvoObjDocument second = KvoObjDocument::InMemory();
  utl_ASSERT(convert(once, second));
  std::stringstream differences;
  inps_diffModels(first, second, differences);
  for (cow_String line; std::getline(differences, line);)
    if (line.find("verbatim_keyword") == cow_String::npos) throw Different(differences.str());
  utl_ASSERT(written(second) == once);
  return 0;
}
