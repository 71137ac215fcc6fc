#pragma once

#include "base/utl_File.h"
#include "host/inps_Session.h"
#include "tests/base/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sstream>

// One run of the program with what it said.
struct ProgramRun {
  explicit ProgramRun(const cow_List<cow_String>& words) {
    std::ostringstream outText;
    std::ostringstream errText;
    exitCode = inps_main(words, outText, errText);
    out = outText.str();
    err = errText.str();
  }
  bool Says(std::string_view text) const { return err.find(text) != cow_String::npos; }

  int exitCode = -1;
  cow_String out;
  cow_String err;
};

// A folder with decks and models in it, and the program run on them.
class ProgramTest : public testing::Test {
protected:
  cow_String Deck(std::string_view name, std::string_view text) const {
    writeFile(m_folder / name, text);
    return File(name);
  }
  cow_String File(std::string_view name) const { return utl_pathText(m_folder / name); }
  bool Exists(std::string_view name) const { return utl_exists(m_folder / name); }

  TemporaryFolder m_folder;
};

inline constexpr const char* oneBrick =
    "*NODE, NSET=ALL\n"
    "1, 0., 0., 0.\n2, 1., 0., 0.\n3, 1., 1., 0.\n4, 0., 1., 0.\n"
    "5, 0., 0., 1.\n6, 1., 0., 1.\n7, 1., 1., 1.\n8, 0., 1., 1.\n"
    "*ELEMENT, TYPE=C3D8, ELSET=SOLID\n"
    "1, 1, 2, 3, 4, 5, 6, 7, 8\n";
