// Any bytes are parsed, every field is looked at, and the text a keyword gives back must read as
// the same keyword.

#include "base/utl_Assert.h"
#include "base/utl_Threads.h"
#include "parser/inp_Parser.h"
#include "parser/inp_ScopeTracker.h"
#include <cstddef>
#include <cstdint>

namespace {

struct Parsed {
  inp_KeywordList keywords;
  bool clean;
};

Parsed parse(const cow_String& deck) {
  // No include files: the fuzzer must not read what is on the machine.
  inp_Parser parser(deck, "", {}, "fuzz.inp", false, true, false);
  Parsed parsed{parser.Parse(false), false};
  parsed.clean = parser.SyntaxErrors().empty() && parser.FileErrors().empty();
  return parsed;
}

void walk(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row)
    for (int col = 0, cols = data.Cols(row); col < cols; ++col) {
      (void)data.Type(row, col);
      (void)data.AsDouble(row, col);
      (void)data.AsString(row, col);
    }
}

} // namespace

// On one thread the same seed tries much the same inputs, and no time goes into waking others.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  utl_setThreadCount(1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const Parsed parsed = parse(cow_String(reinterpret_cast<const char*>(bytes), size));
  for (const inp_Keyword& keyword : parsed.keywords) {
    walk(keyword);
    const cow_String text = keyword.Text();
    if (!parsed.clean) continue; // what could not be read need not read the same again
    const inp_KeywordList again = parse(text).keywords;
    const bool endsNothing = inp_ScopeTracker::IsCloser(keyword.Kind()); // alone: it is left out
    utl_ASSERT(again.empty() == endsNothing);
    if (!endsNothing) utl_ASSERT(again.front().Text() == text);
  }
  return 0;
}
