#define XXH_INLINE_ALL
#include "base/utl_File.h"
#include "database/KvoObjDocument.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include <algorithm>
#include <memory>
#include <xxhash.h>

namespace {

// The digest of the deck's own file, without its includes, as the common tool for it prints it. By
// the piece, so that a large deck never stands in memory as a whole.
cow_String digestOf(const utl_MappedFile& deck) {
  constexpr std::size_t piece = std::size_t{8} << 20;
  const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(),
                                                                       &XXH3_freeState);
  if (!state) throw std::bad_alloc();
  XXH3_128bits_reset(state.get());
  for (std::size_t at = 0; at < deck.Size(); at += piece) {
    const std::size_t size = std::min(piece, deck.Size() - at);
    XXH3_128bits_update(state.get(), deck.Data() + at, size);
    deck.Release(at, size);
  }
  XXH128_canonical_t bytes;
  XXH128_canonicalFromHash(&bytes, XXH3_128bits_digest(state.get()));
  static constexpr char hex[] = "0123456789abcdef";
  cow_String text = "xxh128:";
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
