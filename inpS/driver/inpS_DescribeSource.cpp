#define XXH_INLINE_ALL
#include "base/utl_File.h"
#include "base/utl_MappedFile.h"
#include "database/KvoObjDocument.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include <algorithm>
#include <charconv>
#include <memory>
#include <xxhash.h>

namespace {

constexpr std::size_t kWholeUpTo = std::size_t{64} << 20;
constexpr std::size_t kSamples = 64;
constexpr std::size_t kSample = std::size_t{256} << 10;

// The digest of the deck's own file, without its includes: of the whole file as the common tool for
// it prints it, or, of a large deck, of 64 stretches spread evenly over it, which tells decks apart
// without reading a gigabyte once more. The prefix says which.
cow_String digestOf(const utl_MappedFile& deck) {
  const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(),
                                                                       &XXH3_freeState);
  if (!state) throw std::bad_alloc();
  XXH3_128bits_reset(state.get());
  const bool whole = deck.Size() <= kWholeUpTo;
  if (whole) {
    XXH3_128bits_update(state.get(), deck.Data(), deck.Size());
  } else {
    const std::size_t step = (deck.Size() - kSample) / (kSamples - 1);
    for (std::size_t n = 0; n < kSamples; ++n)
      XXH3_128bits_update(state.get(), deck.Data() + n * step, kSample);
  }
  deck.Release(0, deck.Size());
  XXH128_canonical_t bytes;
  XXH128_canonicalFromHash(&bytes, XXH3_128bits_digest(state.get()));
  static constexpr char hex[] = "0123456789abcdef";
  cow_String text = whole ? "xxh128:" : "xxh128-sampled:" + std::to_string(deck.Size()) + ":";
  for (const unsigned char byte : bytes.digest) text += {hex[byte >> 4], hex[byte & 15]};
  return text;
}

// "1 set entry", "2 set entries"
cow_String counted(long long count, const cow_String& what) {
  cow_String text = std::to_string(count) + ' ' + what;
  if (count == 1) return text;
  if (!text.ends_with('y')) return text + 's';
  text.pop_back();
  return text + "ies";
}

// What the base of a restart tells of itself; 0 for a number that is none.
long long countIn(const cow_String& text) {
  long long count = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), count);
  return fault == std::errc() && end == text.data() + text.size() && count > 0 ? count : 0;
}

} // namespace

// A deck that is no regular file (a pipe) can be read only once and has no digest.
void inpS_Inp2Sim::DescribeSource(const KvoObjDocument& document, const cow_String& deckPath,
                                  const cow_String& deckName) {
  KvoObjDocument described = document;
  described.SetMeta("source_deck", deckName.empty() ? deckPath : deckName);
  const std::filesystem::path path = utl_pathOf(deckPath);
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored))
    described.SetMeta("source_digest", digestOf(utl_MappedFile(path)));
}

// "mesh; mesh of a restart; 2 surfaces; *NODE, FOO; *STEP, BAR": the mesh as a whole, what messages
// told of, and the parameters that nothing read.
void inpS_Inp2Sim::DescribeResult(const KvoObjDocument& document, long long errors,
                                  long long warnings,
                                  const cow_Map<cow_String, long long>& leftOutByKind) const {
  KvoObjDocument described = document;
  constexpr long long most = 1'000'000'000'000'000; // a file from elsewhere may claim anything
  const auto add = [&](const char* key, long long count) {
    const long long before = std::min(most, countIn(described.GetMeta(key)));
    described.SetMeta(key, std::to_string(before + std::min(most, count)));
  };
  add("errors", errors);
  add("warnings", warnings);
  cow_String leftOut = described.GetMeta("left_out");
  const auto leave = [&](const cow_String& what) {
    const cow_String inList = "; " + leftOut + ";";
    if (inList.find("; " + what + ";") == cow_String::npos)
      leftOut += (leftOut.empty() ? "" : "; ") + what;
  };
  if (m_meshLeftOut) leave(m_isRestart ? "mesh of a restart" : "mesh");
  for (const auto& [what, count] : leftOutByKind) leave(counted(count, what));
  constexpr std::size_t mostNamed = 20;
  std::size_t named = 0;
  for (const inpS_NotModelled& entry : m_notModelled)
    if (!entry.kept && named++ < mostNamed) leave("*" + entry.keyword);
  if (named > mostNamed) leave(std::to_string(named - mostNamed) + " more parameters");
  if (!leftOut.empty()) described.SetMeta("left_out", leftOut);
}

void inpS_Inp2Sim::ReportGathered() {
  inpS_MessageContainer::Finalize();
}
