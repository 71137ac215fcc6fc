#define XXH_INLINE_ALL
#include "base/utl_File.h"
#include "base/utl_MappedFile.h"
#include "database/KvoObjDocument.h"
#include "inpS/driver/inpS_Inp2Sim.h"
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

} // namespace

// A deck that is no regular file (a pipe) can be read only once and has no digest.
void inpS_Inp2Sim::DescribeSource(const KvoObjDocument& document, const cow_String& deckPath) {
  KvoObjDocument described = document;
  described.SetMeta("source_deck", deckPath);
  const std::filesystem::path path = utl_pathOf(deckPath);
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored))
    described.SetMeta("source_digest", digestOf(utl_MappedFile(path)));
}
