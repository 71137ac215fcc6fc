#include "host/inps_Session.h"

#include "base/utl_Assert.h"
#include "base/utl_Exception.h"
#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "base/utl_Threads.h"
#include "database/eds_Exception.h"
#include "host/inps_Arguments.h"
#include "host/inps_Help.h"
#include "host/inps_Memory.h"
#include "host/inps_MessageView.h"
#include "host/inps_Terminal.h"
#include "inpS/messages/inpS_Exception.h"
#include <cstdlib>
#include <new>
#include <ostream>

namespace {

void say(inps_Session& session, std::string_view text) {
  session.err << "inps: " << inps_oneLine(text) << '\n' << std::flush;
}

// INPS_THREADS: how many threads bulk work may use; a number from 1 on.
bool readThreadCount(inps_Session& session) {
  const char* text = std::getenv("INPS_THREADS");
  if (!text || !*text) return true;
  char* end = nullptr;
  const long count = std::strtol(text, &end, 10);
  if (*end || count < 1 || count > 1024) {
    say(session,
        "INPS_THREADS is \"" + cow_String(text) + "\", but must be a number from 1 to 1024");
    return false;
  }
  utl_setThreadCount(static_cast<int>(count));
  return true;
}

// A usage fault in words, empty when there is none. "auto" stays what the terminal is fit for.
cow_String chooseColour(inps_Session& session, const inps_Arguments& arguments) {
  if (!arguments.Has(inps_Opt::Color)) return {};
  const cow_String& when = arguments.ValueOf(inps_Opt::Color);
  if (when != "auto" && when != "always" && when != "never")
    return "\"--color\" takes auto, always or never, not \"" + when + "\"";
  if (when != "auto") session.colour = when == "always";
  return {};
}

int runCommand(const cow_List<cow_String>& words, inps_Session& session) {
  const cow_String& word = words.front();
  if (word == "--version" || word == "-V") {
    session.out << "inps " << inps_version << '\n';
    return inps_ExitDone;
  }
  const bool wantsHelp = word == "--help" || word == "-h";
  const inps_Command* command = inps_findCommand(wantsHelp ? "help" : word);
  if (!command) return inps_reportUnknownCommand(session, word);

  inps_Arguments arguments;
  cow_String fault = arguments.Read(*command, std::span(words).subspan(1));
  if (fault.empty() && arguments.Has(inps_Opt::Memory))
    fault = inps_limitMemory(arguments.ValueOf(inps_Opt::Memory));
  if (fault.empty()) fault = chooseColour(session, arguments);
  if (!fault.empty()) {
    say(session, fault);
    inps_printUsage(session.err, *command);
    return inps_ExitUsage;
  }
  if (arguments.Has(inps_Opt::Help)) {
    inps_printHelp(session.out, *command);
    return inps_ExitDone;
  }
  return command->run(session, arguments);
}

int internalError(inps_Session& session, const utl_Assertion& fault) {
  cow_String file = fault.Where().file_name();
  if (const std::size_t slash = file.find_last_of("/\\"); slash != cow_String::npos)
    file.erase(0, slash + 1);
  say(session, "internal error: " + cow_String(fault.what()) + " (" + file + ":" +
                   std::to_string(fault.Where().line()) + "). This is a fault of the program.");
  return inps_ExitFailure;
}

// Nobody left to read our output is no news to anybody; everything else is said.
int outputFailed(inps_Session& session) {
  const auto* buffer = dynamic_cast<const inps_StandardBuffer*>(session.data.rdbuf());
  if (!buffer || !buffer->ReaderIsGone())
    say(session,
        "cannot write standard output" +
            (buffer && !buffer->Failure().empty() ? ": " + buffer->Failure() : cow_String()));
  return inps_ExitFailure;
}

int toldFailures(inps_Session& session, const std::function<int()>& work) {
  try {
    return work();
  } catch (const utl_Assertion& fault) {
    return internalError(session, fault);
  } catch (const utl_Interruption&) {
    say(session, "interrupted");
    return inps_ExitInterrupted;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const inpS_MemoryException&) {
    inps_tellOutOfMemory(session, "out of memory");
  } catch (const eds_MemoryException& failure) {
    inps_tellOutOfMemory(session, session.Shown(failure.what()));
  } catch (const std::exception& failure) {
    if (session.data)
      say(session, session.Shown(failure.what())); // else outputFailed has the
                                                   // better words
  }
  return inps_ExitFailure;
}

} // namespace

void inps_Session::ShowAs(const std::filesystem::path& file, cow_String name) {
  m_standIns.emplace_back('"' + utl_pathText(file) + '"', std::move(name));
}

cow_String inps_Session::Shown(cow_String failure) const {
  for (const auto& [quoted, name] : m_standIns)
    if (const std::size_t at = failure.find(quoted); at != cow_String::npos)
      failure.replace(at, quoted.size(), name);
  return failure;
}

// Memory may run out while a failure is put in words, too.
int inps_tellFailures(inps_Session& session, const std::function<int()>& work) {
  try {
    return toldFailures(session, work);
  } catch (const std::bad_alloc&) {
    inps_tellOutOfMemory(session, "out of memory");
  }
  return inps_ExitFailure;
}

int inps_main(const cow_List<cow_String>& words, inps_Session& session) {
  if (words.empty()) {
    inps_printHelp(session.err);
    return inps_ExitUsage;
  }
  if (!readThreadCount(session)) return inps_ExitUsage;
  const int exitCode = inps_tellFailures(session, [&] { return runCommand(words, session); });
  session.out.flush();
  session.err.flush();
  return session.out && session.data ? exitCode : outputFailed(session);
}

int inps_main(const cow_List<cow_String>& words, aio_ostream& out, aio_ostream& err) {
  inps_Session session{out, err};
  return inps_main(words, session);
}
