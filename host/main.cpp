#include "host/inps_LastResort.h"
#include "host/inps_Memory.h"
#include "host/inps_Session.h"
#include "host/inps_Terminal.h"

#include <cstdlib>
#include <filesystem>
#include <ostream>

namespace {

int run(const cow_List<cow_String>& words) {
  inps_prepareStreams();
  inps_stopWhenAsked();
  inps_limitMemory();
  inps_StandardBuffer outBuffer(inps_StandardBuffer::Stream::Out);
  inps_StandardBuffer errBuffer(inps_StandardBuffer::Stream::Err);
  aio_ostream out(&outBuffer);
  aio_ostream err(&errBuffer);
  const inps_TerminalFacts terminal = inps_messageTerminal();
  const char* noColour = std::getenv("NO_COLOR");
  inps_Session session{out, err};
  session.colour = terminal.isTerminal && (!noColour || !*noColour);
  session.progress = terminal.isTerminal;
  session.isOutTerminal = terminal.isOutputTerminal;
  session.width = terminal.isTerminal && terminal.width <= 0 ? 80 : terminal.width;
  return inps_main(words, session);
}

} // namespace

#if defined(_WIN32)
int wmain(int count, wchar_t** arguments) {
  inps_installLastResort();
  cow_List<cow_String> words;
  for (int i = 1; i < count; ++i) {
    const std::u8string word = std::filesystem::path(arguments[i]).u8string();
    words.emplace_back(word.begin(), word.end());
  }
  return run(words);
}
#else
int main(int count, char** arguments) {
  inps_installLastResort(); // before anything that needs memory
  return run(cow_List<cow_String>(arguments + (count > 0 ? 1 : 0), arguments + count));
}
#endif
