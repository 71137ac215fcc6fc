#include "base/utl_Stream.h"
#include "base/utl_Assert.h"
#include "base/utl_Interruption.h"
#include "base/utl_Threads.h"

#include <algorithm>
#include <ostream>
#include <vector>

class utl_Sink {
public:
  virtual ~utl_Sink() = default;
  virtual void Write(const char* data, std::size_t size) = 0;
  virtual void Flush() {}
  virtual void Close() {}
};

namespace {

class FileSink final : public utl_Sink {
public:
  explicit FileSink(utl_OutputFile file) : m_file(std::move(file)) {}
  void Write(const char* data, std::size_t size) override { m_file.Write(data, size); }
  void Close() override { m_file.Close(); }

private:
  utl_OutputFile m_file;
};

class OstreamSink final : public utl_Sink {
public:
  explicit OstreamSink(std::ostream& out) : m_out(out) {}
  void Write(const char* data, std::size_t size) override {
    m_out.write(data, static_cast<std::streamsize>(size));
    Check();
  }
  void Flush() override {
    m_out.flush();
    Check();
  }

private:
  void Check() const {
    if (!m_out) throw utl_FileException("cannot write", {}, "the output stream failed");
  }
  std::ostream& m_out;
};

class TextSink final : public utl_Sink {
public:
  explicit TextSink(cow_String& text) : m_text(text) {}
  void Write(const char* data, std::size_t size) override { m_text.append(data, size); }

private:
  cow_String& m_text;
};

constexpr std::size_t fileBuffer = std::size_t{256} << 10;
constexpr std::size_t smallBuffer = std::size_t{4} << 10;

} // namespace

utl_Stream::utl_Stream(std::unique_ptr<utl_Sink> sink, std::size_t bufferSize)
    : m_sink(std::move(sink)), m_buffer(bufferSize) {}
utl_Stream::utl_Stream(utl_OutputFile file)
    : utl_Stream(std::make_unique<FileSink>(std::move(file)), fileBuffer) {}
utl_Stream::utl_Stream(const std::filesystem::path& path) : utl_Stream(utl_OutputFile(path)) {}
utl_Stream::utl_Stream(std::ostream& out)
    : utl_Stream(std::make_unique<OstreamSink>(out), smallBuffer) {}
utl_Stream::utl_Stream(cow_String* text)
    : utl_Stream(std::make_unique<TextSink>(*text), smallBuffer) {}

utl_Stream::utl_Stream(utl_Stream&& other) noexcept
    : m_sink(std::move(other.m_sink)), m_buffer(std::move(other.m_buffer)),
      m_used(std::exchange(other.m_used, 0)) {}

utl_Stream::~utl_Stream() {
  try {
    Close();
  } catch (const std::exception&) { // a destructor has nobody to tell
  }
}

void utl_Stream::Write(const char* data, std::size_t size) {
  if (size > m_buffer.Size() - m_used) {
    MakeRoom(1);
    if (size >= m_buffer.Size()) {
      m_sink->Write(data, size);
      return;
    }
  }
  std::copy_n(data, size, m_buffer.Data() + m_used);
  m_used += size;
}

void utl_Stream::MakeRoom(std::size_t size) {
  utl_stopIfAsked();
  utl_ASSERT(m_sink); // nothing is written after Close
  Drain();
  if (size > m_buffer.Size()) m_buffer.Resize(size);
}

// What the sink refuses is gone: a later write must not put a second try behind a gap.
void utl_Stream::Drain() {
  const std::size_t used = std::exchange(m_used, 0);
  if (used > 0) m_sink->Write(m_buffer.Data(), used);
}

void utl_Stream::Flush() {
  if (!m_sink) return;
  Drain();
  m_sink->Flush();
}

void utl_Stream::Close() {
  if (!m_sink) return;
  const std::unique_ptr<utl_Sink> sink = std::move(m_sink);
  const utl_Buffer<char> buffer = std::move(m_buffer); // without it every later write asserts
  const std::size_t used = std::exchange(m_used, 0);
  sink->Write(buffer.Data(), used);
  sink->Flush();
  sink->Close();
}

void utl_printBlocks(utl_Stream& stream, std::size_t blockCount, std::size_t maxBytesPerBlock,
                     const std::function<char*(std::size_t, char*)>& print) {
  if (blockCount < 2 || utl_threadCount() < 2) {
    for (std::size_t i = 0; i < blockCount; ++i)
      stream.Commit(print(i, stream.Reserve(maxBytesPerBlock)));
    return;
  }
  std::vector<utl_Buffer<char>> buffers(utl_slotCount());
  utl_orderedBlocks(
      blockCount,
      [&](std::size_t i, std::size_t slot) {
        buffers[slot].Reserve(maxBytesPerBlock);
        const char* const end = print(i, buffers[slot].Data());
        const auto printed = static_cast<std::size_t>(end - buffers[slot].Data());
        utl_ASSERT(printed <= maxBytesPerBlock);
        buffers[slot].Resize(printed);
      },
      [&](std::size_t, std::size_t slot) {
        stream.Write(buffers[slot].Data(), buffers[slot].Size());
      });
}
