#include "parser/inp_DeckText.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "base/utl_MappedFile.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <mutex>
#include <utility>

namespace {

constexpr std::size_t indexStep = 64 * 1024;
constexpr std::size_t releaseStep = 4 * 1024 * 1024;

long long countLineFeeds(const char* begin, const char* end) {
  return std::count(begin, end, '\n');
}

// Columns count characters, in front of very long lines bytes: a line of 100,000 bad fields must
// not cost its length for each of them.
constexpr std::ptrdiff_t longestCounted = 4096;

int columnOf(const char* lineBegin, const char* at) {
  const std::ptrdiff_t bytes = at - lineBegin;
  const std::string_view before(lineBegin, static_cast<std::size_t>(bytes));
  const std::size_t column = bytes > longestCounted ? before.size() : inp_countChars(before);
  return static_cast<int>(std::min<std::size_t>(column, 2147483646)) + 1;
}

cow_String shownLine(const char* lineBegin, const char* end) {
  static constexpr std::ptrdiff_t most = 4096; // far more than is shown
  const char* const limit = end - lineBegin > most ? lineBegin + most : end;
  const char* const lineEnd = inp_lineFeed(lineBegin, limit);
  const std::string_view line(lineBegin, static_cast<std::size_t>(lineEnd - lineBegin));
  return inp_shortened(line.substr(0, line.find_last_not_of("\r \t") + 1));
}

// The start of the field that stands at or ends at a place.
const char* fieldBegin(const char* lineBegin, const char* at) {
  while (at != lineBegin && at[-1] != ',') --at;
  return at;
}

// Old systems and some exporters end lines by a carriage return alone. Of such a file no line feed
// comes in its first stretch, but for the very end, where an editor may have put one.
bool endsLinesByReturns(std::string_view text) {
  static constexpr std::size_t stretch = 64 * 1024;
  text = text.substr(0, std::min(stretch, text.find_last_not_of("\r\n") + 1));
  return text.find('\n') == text.npos && text.find('\r') != text.npos;
}

// Of such a file, which is a rare guest, the whole text is held in memory.
cow_String withLineFeeds(std::string_view text) {
  cow_String copy(text);
  for (std::size_t i = 0; i < copy.size(); ++i)
    if (copy[i] == '\r' && (i + 1 == copy.size() || copy[i + 1] != '\n')) copy[i] = '\n';
  return copy;
}

} // namespace

struct inp_DeckText::Impl {
  utl_MappedFile file; // or
  cow_String buffer;
  std::filesystem::path path;  // of a file
  const char* begin = nullptr; // behind a byte-order mark
  const char* end = nullptr;
  cow_String name;
  std::filesystem::path folder;
  inp_DeckTextPtr includedFrom;
  long long includedAtLine = 0;
  inp_DeckTextPtr origin; // of a rewritten text
  long long firstLine = 1;

  // Line feeds before every indexStep-th byte, as far as anyone has asked. Locked, since texts are
  // shared by threads and messages are rare.
  mutable std::mutex mutex;
  mutable cow_List<long long> lineFeedsBefore{0};

  void Read(const std::filesystem::path& from) {
    file = utl_MappedFile(from);
    path = from;
    folder = from.parent_path();
    if (endsLinesByReturns(file.Text())) {
      buffer = withLineFeeds(file.Text());
      file.Release(0, file.Size());
    }
    if (buffer.empty())
      SetText(file.Data(), file.Size());
    else
      SetText(buffer.data(), buffer.size());
  }

  void SetText(const char* data, std::size_t size) {
    static constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::string_view text(data, size);
    begin = data + (text.starts_with(mark) ? mark.size() : 0);
    end = data + size;
    if (end != begin && end[-1] == '\x1a') --end; // how old systems end a text
  }

  std::size_t Size() const { return static_cast<std::size_t>(end - begin); }

  void Release(const char* from, const char* to) const {
    if (!file.IsMapped() || !buffer.empty() || from >= to) return;
    file.Release(static_cast<std::size_t>(from - file.Data()), static_cast<std::size_t>(to - from));
  }

  void ExtendIndex() const {
    const std::size_t done = (lineFeedsBefore.size() - 1) * indexStep;
    const char* from = begin + done;
    lineFeedsBefore.push_back(lineFeedsBefore.back() + countLineFeeds(from, from + indexStep));
    const std::size_t now = done + indexStep;
    if (now % releaseStep == 0) Release(begin + now - releaseStep, begin + now);
  }

  // Line number within this text, from 0.
  long long LineOf(const char* at) const {
    const std::lock_guard lock(mutex);
    const std::size_t step = static_cast<std::size_t>(at - begin) / indexStep;
    while (lineFeedsBefore.size() <= step) ExtendIndex();
    return lineFeedsBefore[step] + countLineFeeds(begin + step * indexStep, at);
  }

  // Start of a line given from 0; the end of the text when it has fewer lines.
  const char* StartOfLine(long long line) const {
    if (line <= 0) return begin;
    const std::lock_guard lock(mutex);
    while (lineFeedsBefore.back() < line && lineFeedsBefore.size() * indexStep <= Size())
      ExtendIndex();
    const auto after = std::lower_bound(lineFeedsBefore.begin(), lineFeedsBefore.end(), line);
    const auto step = static_cast<std::size_t>(after - lineFeedsBefore.begin()) - 1;
    const char* p = begin + step * indexStep;
    for (long long n = lineFeedsBefore[step]; n < line; ++n) {
      p = inp_lineFeed(p, end);
      if (p == end) return end;
      ++p;
    }
    return p;
  }

  wip_Place Frame(long long line) const {
    wip_Place place;
    place.file = name;
    place.line = line;
    const Impl* inner = this;
    while (inner->includedFrom) {
      const Impl* outer = inner->includedFrom->m_impl.get();
      place.includedFrom.push_back(outer->name + ":" + std::to_string(inner->includedAtLine));
      inner = outer;
    }
    return place;
  }
};

inp_DeckText::inp_DeckText(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
inp_DeckText::~inp_DeckText() = default;

inp_DeckTextPtr inp_DeckText::Open(const std::filesystem::path& path, inp_DeckTextPtr includedFrom,
                                   long long includedAtLine) {
  auto impl = std::make_unique<Impl>();
  impl->Read(path);
  impl->name = utl_pathText(path);
  impl->includedFrom = std::move(includedFrom);
  impl->includedAtLine = includedAtLine;
  return inp_DeckTextPtr(new inp_DeckText(std::move(impl)));
}

inp_DeckTextPtr inp_DeckText::OpenAs(const std::filesystem::path& path, cow_String name,
                                     std::filesystem::path folder) {
  auto impl = std::make_unique<Impl>();
  impl->Read(path);
  impl->folder = std::move(folder);
  impl->name = std::move(name);
  return inp_DeckTextPtr(new inp_DeckText(std::move(impl)));
}

inp_DeckTextPtr inp_DeckText::FromString(cow_String text, cow_String name) {
  auto impl = std::make_unique<Impl>();
  impl->buffer = std::move(text);
  impl->SetText(impl->buffer.data(), impl->buffer.size());
  impl->name = std::move(name);
  return inp_DeckTextPtr(new inp_DeckText(std::move(impl)));
}

inp_DeckTextPtr inp_DeckText::Rewritten(cow_String text, inp_DeckTextPtr origin,
                                        long long firstLine) {
  utl_ASSERT(origin != nullptr);
  // Rewritten twice, it still stems from the file: line numbers are the file's all along.
  if (origin->m_impl->origin) origin = origin->m_impl->origin;
  auto impl = std::make_unique<Impl>();
  impl->buffer = std::move(text);
  impl->SetText(impl->buffer.data(), impl->buffer.size());
  impl->name = origin->FileName();
  impl->folder = origin->Folder();
  impl->firstLine = firstLine;
  impl->origin = std::move(origin);
  return inp_DeckTextPtr(new inp_DeckText(std::move(impl)));
}

const char* inp_DeckText::Begin() const {
  return m_impl->begin;
}
const char* inp_DeckText::End() const {
  return m_impl->end;
}
const cow_String& inp_DeckText::FileName() const {
  return m_impl->name;
}
const std::filesystem::path& inp_DeckText::Path() const {
  return m_impl->path;
}
bool inp_DeckText::IsFileAsItWas() const {
  return m_impl->file.IsAsItWas();
}
const std::filesystem::path& inp_DeckText::Folder() const {
  return m_impl->folder;
}

wip_Place inp_DeckText::PlaceOf(const char* at, int width) const {
  utl_ASSERT(at >= m_impl->begin && at <= m_impl->end);
  return PlaceInLine(inp_lineBegin(at, m_impl->begin), at, width,
                     m_impl->LineOf(at) + m_impl->firstLine);
}

wip_Place inp_DeckText::PlaceInLine(const char* lineBegin, const char* at, int width,
                                    long long line) const {
  utl_ASSERT(lineBegin >= m_impl->begin && lineBegin <= at && at <= m_impl->end);
  if (m_impl->origin) return PlaceInOrigin(lineBegin, at, width, line);
  wip_Place place = m_impl->Frame(line);
  place.column = columnOf(lineBegin, at);
  const std::ptrdiff_t room = m_impl->end - at;
  const auto bytes = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(width, 0, room));
  place.width = static_cast<int>(inp_countChars({at, std::min<std::size_t>(bytes, 4096)}));
  place.sourceLine = shownLine(lineBegin, m_impl->end);
  return place;
}

// Users look at the line as they wrote it: the place moves to the character it stems from, or to
// the start of the stretch that was rewritten.
wip_Place inp_DeckText::PlaceInOrigin(const char* lineBegin, const char* at, int width,
                                      long long line) const {
  const Impl& origin = *m_impl->origin->m_impl;
  const char* const old = origin.StartOfLine(line - 1);
  const char* const oldEnd = inp_lineFeed(old, origin.end);
  const char* const lineEnd = inp_lineFeed(lineBegin, m_impl->end);
  const char *oldAt = old, *stretchEnd = lineEnd, *oldStretchEnd = oldEnd;
  // Values seldom hold commas: field by field, what stands between two of them has its place too.
  const bool isShort = std::max(lineEnd - lineBegin, oldEnd - old) <= longestCounted;
  if (isShort && std::count(lineBegin, lineEnd, ',') == std::count(old, oldEnd, ',')) {
    const char* const field = fieldBegin(lineBegin, at);
    for (auto n = std::count(lineBegin, field, ','); n > 0; --n)
      oldAt = std::find(oldAt, oldEnd, ',') + 1;
    lineBegin = field;
    stretchEnd = std::find(at, lineEnd, ',');
    oldStretchEnd = std::find(oldAt, oldEnd, ',');
  }
  const auto [same, oldSame] = std::mismatch(lineBegin, stretchEnd, oldAt, oldStretchEnd);
  if (at < same) return m_impl->origin->PlaceInLine(old, oldAt + (at - lineBegin), width, line);
  const char* tail = stretchEnd;
  const char* oldTail = oldStretchEnd;
  while (tail > same && oldTail > oldSame && tail[-1] == oldTail[-1]) --tail, --oldTail;
  if (at < tail) return m_impl->origin->PlaceInLine(old, oldSame, 1, line);
  return m_impl->origin->PlaceInLine(old, oldStretchEnd - (stretchEnd - at), width, line);
}

wip_Place inp_DeckText::PlaceOfLine(long long line) const {
  if (m_impl->origin) return m_impl->origin->PlaceOfLine(line);
  wip_Place place = m_impl->Frame(line);
  place.sourceLine = shownLine(m_impl->StartOfLine(line - 1), m_impl->end);
  return place;
}

void inp_DeckText::Release(const char* begin, const char* end) const {
  m_impl->Release(begin, end);
}
