#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include <functional>
#include <streambuf>
#include <string_view>

// The door between the program and people's eyes: what a terminal would obey is written out instead
// of sent. "\x1b" stands for a control byte, "\xff" for a byte that is no UTF-8, "\u202e" for a
// control character beyond ASCII or one that turns the direction of text; tabs and line ends pass.
// A session's `out` and `err` go through it, so that nobody who prints has to think of it.
class inps_VisibleBuffer final : public std::streambuf {
public:
  explicit inps_VisibleBuffer(aio_ostream& target); // outlives this
  ~inps_VisibleBuffer() override;

  // What the program itself has to say to a terminal: colours, the progress line.
  void WriteOwn(std::string_view bytes);
  // Does the writing to the target in this one's place, as long as it is set.
  using Writer = std::function<void(aio_ostream& target, std::string_view bytes)>;
  void WriteBy(Writer writer) { m_writer = std::move(writer); }
  aio_ostream& Target() const { return m_target; }

protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* data, std::streamsize size) override;
  int sync() override;

private:
  bool Show(std::string_view text, bool isEnd);
  void ShowCharacters(std::string_view bytes);
  bool Send(std::string_view bytes);

  aio_ostream& m_target;
  Writer m_writer;
  cow_String m_begun; // of a character whose other bytes are still to come
};

// A name or a failure that stands in a line of the program's own: a line end in it, which the door
// lets pass, could begin a line that looks like another message.
cow_String inps_oneLine(std::string_view text);

// Past the door of the stream, when it has one.
void inps_writeOwn(aio_ostream& out, std::string_view bytes);
