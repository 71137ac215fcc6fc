#pragma once

#include "base/cow_Value.h"
#include <streambuf>
#include <string_view>

// What the system says of the streams a program was started with.
struct inps_TerminalFacts {
  bool isTerminal = false;       // messages go to a terminal
  bool isOutputTerminal = false; // and standard output does
  int width = 0;                 // its columns, 0 when unknown
};

inps_TerminalFacts inps_messageTerminal();

// A reader of our output that goes away must be a failing write and not the end of the program;
// output is UTF-8 and has the line ends we write.
void inps_prepareStreams();

// Ctrl-C, and a system that asks the program to end, stop the work where it may end. Who asks
// again does not wait for that.
void inps_stopWhenAsked();

// A word as the shell of this system takes it: quoted where it has to be.
cow_String inps_shellWord(const cow_String& word);

// To standard error past all buffers: takes no memory, may be called from a signal handler.
void inps_sayAtOnce(std::string_view text) noexcept;

// A standard stream of the process as a stream buffer that remembers why it failed.
class inps_StandardBuffer final : public std::streambuf {
public:
  enum class Stream : int { Out = 1, Err = 2 };

  explicit inps_StandardBuffer(Stream stream);
  ~inps_StandardBuffer() override;

  bool ReaderIsGone() const { return m_readerIsGone; } // of a pipe
  cow_String Failure() const;                          // the system's words, empty when none

protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* data, std::streamsize size) override;
  int sync() override;

private:
  bool Drain();
  bool WriteAll(const char* data, std::size_t size);

  int m_handle;
  cow_List<char> m_room;
  int m_failure = 0; // of the system: a text would need memory
  bool m_readerIsGone = false;
};
