#include "parser/inp_DataPieces.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include "parser/inp_TextLines.h"

namespace {

// Text, its separators and what it decodes to fit a second-level cache together.
constexpr std::ptrdiff_t pieceSize = 256 * 1024;
constexpr std::ptrdiff_t releaseStep = 1024 * 1024; // a system call per piece would show
constexpr std::ptrdiff_t cutReleaseStep = 16 * 1024 * 1024;

const char* lineStartFrom(const char* p, const inp_TextRange& range) {
  if (p == range.begin || p[-1] == '\n') return p;
  const char* const feed = inp_lineFeed(p, range.end);
  return feed == range.end ? feed : feed + 1;
}

// Releases the pages of what has been published, some at a time.
class PageReleaser {
public:
  void Done(const inp_TextRange& range) {
    if (range.text != m_text || range.begin != m_end) Flush();
    if (!m_text) {
      m_text = range.text;
      m_begin = range.begin;
    }
    m_end = range.end;
    if (m_end - m_begin >= releaseStep) Flush();
  }
  void Flush() {
    if (m_text && m_end - m_begin >= releaseStep) m_text->Release(m_begin, m_end);
    m_text = nullptr;
  }

private:
  const inp_DeckText* m_text = nullptr;
  const char* m_begin = nullptr;
  const char* m_end = nullptr;
};

// Cuts one range; `open` says that its first lines belong to the piece before.
void cutRange(const inp_TextRange& whole, const inp_CutRule* rule, bool open,
              cow_List<inp_DataPiece>& pieces) {
  const std::ptrdiff_t size = utl_blockSize(pieceSize);
  const char* begin = whole.begin;
  const char* kept = begin; // each look at a line maps the pages around it: they go again
  while (begin != whole.end) {
    const char* end = whole.end;
    if (end - begin > size) {
      const char* const wanted = lineStartFrom(begin + size, whole);
      end = rule ? rule->Cut(whole, open ? nullptr : begin, wanted) : wanted;
    }
    if (!open) pieces.emplace_back();
    pieces.back().push_back({whole.text, begin, end});
    begin = end;
    open = false;
    if (begin - kept < cutReleaseStep) continue;
    whole.text->Release(kept, begin);
    kept = begin;
  }
}

} // namespace

cow_List<inp_DataPiece> inp_cutData(const inp_DataArray& data, const inp_CutRule* rule) {
  cow_List<inp_DataPiece> pieces;
  bool open = false;
  for (const inp_DataSegment& segment : data.Segments()) {
    const inp_TextRange range{segment.text.get(), segment.begin, segment.end};
    cutRange(range, rule, open, pieces);
    open = rule && !pieces.empty() && rule->IsOpenBehind(range, open);
  }
  return pieces;
}

void inp_decodePieces(const cow_List<inp_DataPiece>& pieces,
                      const std::function<void(const inp_DataPiece&, std::size_t slot)>& decode,
                      const std::function<void(std::size_t slot)>& publish) {
  if (pieces.size() == 1) { // most keywords are small
    decode(pieces[0], 0);
    publish(0);
    return;
  }
  PageReleaser releaser;
  utl_orderedBlocks(
      pieces.size(), [&](std::size_t i, std::size_t slot) { decode(pieces[i], slot); },
      [&](std::size_t i, std::size_t slot) {
        publish(slot);
        for (const inp_TextRange& range : pieces[i]) releaser.Done(range);
      });
  releaser.Flush();
}
