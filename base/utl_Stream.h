#pragma once

#include "base/cow_Value.h"
#include "base/utl_Buffer.h"
#include "base/utl_File.h"
#include "base/utl_Number.h"
#include "base/utl_OutputFile.h"
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string_view>

class utl_Sink; // where full buffers go

// A buffered text sink. Integers and reals are written by the number codecs: the shortest text that
// reads back to the same value, and reals always with a point or an exponent.
// A failing write throws utl_FileException; the destructor flushes and keeps quiet about failures,
// so call Close() to learn of the last one.
class utl_Stream {
public:
  explicit utl_Stream(const std::filesystem::path& path); // creates or overwrites
  explicit utl_Stream(utl_OutputFile file);
  explicit utl_Stream(std::ostream& out); // `out` outlives the stream
  explicit utl_Stream(cow_String* text);  // appends to it; complete after Flush
  ~utl_Stream();
  utl_Stream(utl_Stream&&) noexcept;
  utl_Stream& operator=(utl_Stream&&) = delete;

  utl_Stream& operator<<(char c) {
    char* p = Reserve(1);
    *p = c;
    Commit(p + 1);
    return *this;
  }
  utl_Stream& operator<<(std::string_view text) {
    Write(text.data(), text.size());
    return *this;
  }
  utl_Stream& operator<<(const char* text) { return *this << std::string_view(text); }
  utl_Stream& operator<<(const cow_String& text) { return *this << std::string_view(text); }
  template <std::signed_integral T> utl_Stream& operator<<(T value) {
    Commit(utl_printInt(Reserve(utl_intTextRoom), value));
    return *this;
  }
  template <std::unsigned_integral T> utl_Stream& operator<<(T value) {
    Commit(utl_printUnsigned(Reserve(utl_intTextRoom), value));
    return *this;
  }
  utl_Stream& operator<<(double value) {
    Commit(utl_printDouble(Reserve(utl_doubleTextRoom), value));
    return *this;
  }
  utl_Stream& operator<<(bool) = delete; // decks say YES, NO, ON, OFF: the caller chooses
  utl_Stream& operator<<(utl_Stream& (*manipulator)(utl_Stream&)) { return manipulator(*this); }

  void Write(const char* data, std::size_t size);

  // Room for `size` bytes to print into; Commit tells where the printing ended. Nothing else
  // happens to the stream in between.
  char* Reserve(std::size_t size) {
    if (size > m_buffer.Size() - m_used) MakeRoom(size);
    return m_buffer.Data() + m_used;
  }
  void Commit(const char* end) { m_used = static_cast<std::size_t>(end - m_buffer.Data()); }

  void Flush(); // hands everything to the sink; does not sync a disk
  void Close(); // flushes and closes a file; nothing may be written afterwards

private:
  utl_Stream(std::unique_ptr<utl_Sink> sink, std::size_t bufferSize);
  void MakeRoom(std::size_t size);
  void Drain();

  std::unique_ptr<utl_Sink> m_sink;
  utl_Buffer<char> m_buffer;
  std::size_t m_used = 0;
};

// A line feed; does not flush.
inline utl_Stream& endl(utl_Stream& stream) {
  return stream << '\n';
}

// Prints blocks on all threads, each into a buffer of its own, and writes them in order.
// print(block, out) writes at most maxBytesPerBlock bytes from `out` on and returns their end.
void utl_printBlocks(utl_Stream& stream, std::size_t blockCount, std::size_t maxBytesPerBlock,
                     const std::function<char*(std::size_t block, char* out)>& print);
