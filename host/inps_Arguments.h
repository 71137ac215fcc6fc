#pragma once

#include "base/cow_Value.h"
#include <array>
#include <filesystem>
#include <span>
#include <string_view>

struct inps_Session;
class inps_Arguments;

enum class inps_Opt : unsigned char {
  Output,
  Force,
  Strict,
  Salvage,
  Restart,
  Sets,
  Surfaces,
  Axes,
  Compress,
  Step,
  Timings,
  Json,
  Loads,
  Markdown,
  NoKept,
  Tolerance,
  Materials,
  Sections,
  History,
  Quiet,
  Memory,
  Color,
  Help,
  Count
};

struct inps_Option {
  inps_Opt id;
  char letter; // 0: none
  std::string_view name;
  std::string_view value; // what stands for its value in the help; empty: takes none
  std::string_view help;
};

// One command of the program: usage, help and parsing follow from its row.
struct inps_Command {
  std::string_view name;
  std::string_view operands; // as in the usage: "A B", "[COMMAND]"
  std::size_t fewest;        // operands
  std::size_t most;
  std::string_view summary;
  std::string_view details; // lines of the help, may be empty
  std::span<const inps_Opt> options;
  std::span<const std::string_view> examples;
  int (*run)(inps_Session& session, const inps_Arguments& arguments);
  std::size_t written = 0; // of the operands, at their end: what is made
};

std::span<const inps_Command> inps_commands();
std::span<const inps_Opt> inps_commonOptions();              // of every command
const inps_Command* inps_findCommand(std::string_view name); // null when there is none
const inps_Option& inps_option(inps_Opt id);

// The words of a command line, understood.
class inps_Arguments {
public:
  // Of the words behind the command. The result is a usage error in words, empty when all is well.
  cow_String Read(const inps_Command& command, std::span<const cow_String> words);

  bool Has(inps_Opt option) const { return m_given[static_cast<std::size_t>(option)]; }
  const cow_String& ValueOf(inps_Opt option) const {
    return m_values[static_cast<std::size_t>(option)];
  }
  std::filesystem::path PathOf(inps_Opt option) const;

  const cow_List<cow_String>& Operands() const { return m_operands; }
  std::filesystem::path Path(std::size_t operand) const;

private:
  static constexpr std::size_t optionCount = static_cast<std::size_t>(inps_Opt::Count);
  cow_String ReadOption(const inps_Command& command, std::span<const cow_String> words,
                        std::size_t& at);

  std::array<bool, optionCount> m_given{};
  std::array<cow_String, optionCount> m_values;
  cow_List<cow_String> m_operands;
};

// The candidate closest to a misspelt word; empty when none is close.
std::string_view inps_nearest(std::string_view word, std::span<const std::string_view> candidates);
// " (did you mean "…"?)" or nothing.
cow_String inps_didYouMean(std::string_view word, std::span<const std::string_view> candidates);
