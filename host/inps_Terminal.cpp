#include "host/inps_Terminal.h"

#include "base/utl_Interruption.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

#if defined(_WIN32)
#define NOMINMAX
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace {

constexpr std::size_t roomSize = std::size_t{32} << 10;

#if defined(_WIN32)
long long writeSome(int handle, const char* data, std::size_t size) {
  const std::size_t most = std::size_t{1} << 20;
  return _write(handle, data, static_cast<unsigned>(size < most ? size : most));
}

BOOL WINAPI onAsked(DWORD) {
  static std::atomic<bool> before{false};
  utl_askToStop();
  return before.exchange(true) ? FALSE : TRUE;
}
#else
long long writeSome(int handle, const char* data, std::size_t size) {
  return ::write(handle, data, size);
}

void onAsked(int) {
  utl_askToStop();
}
#endif

// Letters, digits and a few signs that no shell takes for something else.
bool isPlainWord(std::string_view word, std::string_view alsoPlain) {
  return !word.empty() && word.front() != '-' && std::ranges::all_of(word, [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_-./+=,@").find(c) != std::string_view::npos ||
           alsoPlain.find(c) != std::string_view::npos;
  });
}

} // namespace

#if defined(_WIN32)
inps_TerminalFacts inps_messageTerminal() {
  inps_TerminalFacts facts;
  HANDLE handle = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  facts.isOutputTerminal = _isatty(1) != 0;
  if (!_isatty(2) || !GetConsoleMode(handle, &mode)) return facts;
  // Consoles that do not understand colours are treated as files.
  facts.isTerminal = SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (GetConsoleScreenBufferInfo(handle, &info))
    facts.width = info.srWindow.Right - info.srWindow.Left + 1;
  return facts;
}

cow_String inps_shellWord(const cow_String& word) {
  return isPlainWord(word, "\\:") ? word : '"' + word + '"'; // no name holds a quote
}

void inps_prepareStreams() {
  _setmode(0, _O_BINARY);
  _setmode(1, _O_BINARY);
  _setmode(2, _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

void inps_stopWhenAsked() {
  SetConsoleCtrlHandler(onAsked, TRUE);
}
#else
inps_TerminalFacts inps_messageTerminal() {
  inps_TerminalFacts facts;
  facts.isTerminal = isatty(STDERR_FILENO) != 0;
  facts.isOutputTerminal = isatty(STDOUT_FILENO) != 0;
  winsize size{};
  if (facts.isTerminal && ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0) facts.width = size.ws_col;
  return facts;
}

cow_String inps_shellWord(const cow_String& word) {
  if (isPlainWord(word, "")) return word;
  cow_String quoted = word.starts_with('-') ? "./'" : "'";
  for (const char c : word) quoted += c == '\'' ? cow_String("'\\''") : cow_String(1, c);
  return quoted + '\'';
}

void inps_prepareStreams() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN); // a file beyond its limit is a failure of writing
}

void inps_stopWhenAsked() {
  struct sigaction action {};
  action.sa_handler = onAsked;
  action.sa_flags = static_cast<int>(SA_RESETHAND); // the next one ends the process
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    // Who starts us in the background may have said that we are not to be asked.
    if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
      sigaction(number, &action, nullptr);
  }
}
#endif

void inps_sayAtOnce(std::string_view text) noexcept {
  while (!text.empty()) {
    const long long written = writeSome(2, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

inps_StandardBuffer::inps_StandardBuffer(Stream stream)
    : m_handle(static_cast<int>(stream)), m_room(stream == Stream::Out ? roomSize : 0) {
  setp(m_room.data(), m_room.data() + m_room.size());
}

inps_StandardBuffer::~inps_StandardBuffer() {
  Drain();
}

cow_String inps_StandardBuffer::Failure() const {
  return m_failure != 0 ? std::generic_category().message(m_failure) : cow_String();
}

bool inps_StandardBuffer::WriteAll(const char* data, std::size_t size) {
  if (m_failure != 0) return false;
  while (size > 0) {
    const long long written = writeSome(m_handle, data, size);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) {
      m_readerIsGone = errno == EPIPE;
      m_failure = errno;
      return false;
    }
    data += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool inps_StandardBuffer::Drain() {
  const bool done = WriteAll(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  setp(m_room.data(), m_room.data() + m_room.size());
  return done;
}

inps_StandardBuffer::int_type inps_StandardBuffer::overflow(int_type c) {
  if (!Drain()) return traits_type::eof();
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char byte = traits_type::to_char_type(c);
  if (m_room.empty()) return WriteAll(&byte, 1) ? c : traits_type::eof();
  *pptr() = byte;
  pbump(1);
  return c;
}

std::streamsize inps_StandardBuffer::xsputn(const char* data, std::streamsize size) {
  if (size < epptr() - pptr()) {
    traits_type::copy(pptr(), data, static_cast<std::size_t>(size));
    pbump(static_cast<int>(size));
    return size;
  }
  return Drain() && WriteAll(data, static_cast<std::size_t>(size)) ? size : 0;
}

int inps_StandardBuffer::sync() {
  return Drain() ? 0 : -1;
}
