#include "bench/limit_program.h"

#include "base/utl_MappedFile.h"
#include "base/utl_Number.h"
#include "bench/seconds.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t blockBytes = std::size_t{1} << 20;

struct Block {
  const char* begin;
  const char* end;
  std::vector<std::string_view> names; // of targets that are no labels
  std::vector<std::int32_t> targets;
  std::vector<std::int32_t> integers;
  std::vector<double> reals;
  std::vector<char> text;
  int integersOfLine = 1;
};

const char* behind(const char* p, const char* end, char separator) {
  if (p == nullptr || p == end || *p != separator)
    throw std::runtime_error("a line of other fields");
  return p + 1;
}

// "target, integers, real": the fields and nothing else, into arrays as fresh as a conversion's.
void decode(Block& block) {
  block = Block{block.begin, block.end, {}, {}, {}, {}, {}, block.integersOfLine};
  for (const char* p = block.begin; p != block.end;) {
    std::int64_t value = 0;
    const char* next = utl_readInt(p, block.end, value);
    if (next == nullptr) {
      next = static_cast<const char*>(std::memchr(p, ',', static_cast<std::size_t>(block.end - p)));
      if (next == nullptr) throw std::runtime_error("a line of other fields");
      block.names.emplace_back(p, static_cast<std::size_t>(next - p));
      value = -static_cast<std::int64_t>(block.names.size());
    }
    block.targets.push_back(static_cast<std::int32_t>(value));
    p = behind(next, block.end, ',');
    for (int n = 0; n < block.integersOfLine; ++n) {
      p = behind(utl_readInt(p, block.end, value), block.end, ',');
      block.integers.push_back(static_cast<std::int32_t>(value));
    }
    double real = 0;
    p = behind(utl_readDouble(p, block.end, real), block.end, '\n');
    block.reals.push_back(real);
  }
}

void print(Block& block) {
  constexpr std::size_t room = 3 * utl_intTextRoom + utl_doubleTextRoom + 64;
  block.text.resize(block.targets.size() * room);
  char* out = block.text.data();
  const std::int32_t* integer = block.integers.data();
  for (std::size_t n = 0; n < block.targets.size(); ++n) {
    if (const std::int32_t target = block.targets[n]; target < 0) {
      const std::string_view name = block.names[static_cast<std::size_t>(-1LL - target)];
      std::memcpy(out, name.data(), name.size());
      out += name.size();
    } else {
      out = utl_printInt(out, target);
    }
    for (int k = 0; k < block.integersOfLine; ++k) {
      *out++ = ',';
      *out++ = ' ';
      out = utl_printInt(out, *integer++);
    }
    *out++ = ',';
    *out++ = ' ';
    out = utl_printDouble(out, block.reals[n]);
    *out++ = '\n';
  }
}

// Behind the last keyword line but the one that ends a step.
std::vector<Block> blocksOf(std::string_view text) {
  constexpr std::string_view endOfStep = "*END STEP\n";
  if (text.ends_with(endOfStep)) text.remove_suffix(endOfStep.size());
  const std::size_t keyword = text.rfind("\n*");
  if (keyword == text.npos) throw std::runtime_error("no keyword");
  const char* p = text.data() + text.find('\n', keyword + 1) + 1;
  const char* const end = text.data() + text.size();
  const auto commas = std::count(p, std::find(p, end, '\n'), ',');
  const int integers = std::clamp(static_cast<int>(commas) - 1, 0, 2);
  std::vector<Block> blocks;
  while (p != end) {
    const char* stop = end - p > static_cast<std::ptrdiff_t>(blockBytes) ? p + blockBytes : end;
    while (stop[-1] != '\n') ++stop;
    blocks.push_back({p, stop, {}, {}, {}, {}, {}, integers});
    p = stop;
  }
  return blocks;
}

double best(std::vector<Block>& blocks, int threads, void (*work)(Block&)) {
  double seconds = 1e9;
  for (int round = 0; round < 5; ++round)
    seconds = std::min(seconds, secondsOf([&] {
                         std::atomic<std::size_t> next{0};
                         limitRunThreads(threads, [&] {
                           for (std::size_t n = next++; n < blocks.size(); n = next++)
                             work(blocks[n]);
                         });
                       }));
  return seconds;
}

} // namespace

LimitColumns limitColumns(const std::filesystem::path& deck, int threads) {
  const utl_MappedFile file(deck);
  std::vector<Block> blocks = blocksOf({file.Data(), file.Size()});
  LimitColumns result;
  result.decodeSeconds = best(blocks, threads, decode);
  result.printSeconds = best(blocks, threads, print);
  for (const Block& block : blocks) result.rows += static_cast<std::int64_t>(block.reals.size());
  return result;
}
