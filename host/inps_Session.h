#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "host/inps_VisibleBuffer.h"
#include <chrono>
#include <filesystem>
#include <functional>
#include <ostream>
#include <utility>

// How a run of the program ended, as the shell sees it.
enum inps_Exit : int {
  inps_ExitDone = 0,
  inps_ExitFaults = 1,  // the deck has errors, the model has faults, or two models differ
  inps_ExitUsage = 2,   // the words on the command line
  inps_ExitFailure = 3, // files, disk, memory, or a fault of ours
  inps_ExitNotModelled = 4,
  inps_ExitInterrupted = 130, // as shells tell of a program ended from the keyboard
};

// The streams of one run and what they are fit for. Texts go to `out`, messages to `err`; `data` is
// standard output as it is, for decks and other files that must arrive byte by byte.
struct inps_Session {
  inps_Session(aio_ostream& standardOut, aio_ostream& standardErr)
      : outDoor(standardOut), errDoor(standardErr), data(standardOut), out(&outDoor),
        err(&errDoor) {}

  inps_VisibleBuffer outDoor;
  inps_VisibleBuffer errDoor;
  aio_ostream& data;
  aio_ostream out;
  aio_ostream err;
  bool colour = false;
  bool progress = false;
  bool isOutTerminal = false;               // standard output is looked at, too
  std::chrono::milliseconds patience{2000}; // work that takes longer has a progress line
  int width = 0;                            // columns for source lines; 0: no terminal

  // Temporary files whose own names people need not know, with what failures call them.
  void ShowAs(const std::filesystem::path& file, cow_String name);
  cow_String Shown(cow_String failure) const;

private:
  cow_List<std::pair<cow_String, cow_String>> m_standIns;
};

// The work's exit code; a failure that leaves it is told and has one of its own.
int inps_tellFailures(inps_Session& session, const std::function<int()>& work);

// The whole program but the process around it. The words do not include the program's name.
int inps_main(const cow_List<cow_String>& words, inps_Session& session);
int inps_main(const cow_List<cow_String>& words, aio_ostream& out, aio_ostream& err);
