#include "host/inps_Help.h"

#include "host/inps_Arguments.h"
#include "host/inps_Commands.h"
#include "host/inps_Session.h"
#include <algorithm>
#include <ostream>

namespace {

cow_String spelt(const inps_Option& option) {
  cow_String text = option.letter ? cow_String("-") + option.letter + ", " : cow_String();
  text += option.name;
  if (!option.value.empty()) text += " " + cow_String(option.value);
  return text;
}

// Two columns, the first as wide as its widest text.
void printColumns(aio_ostream& out, const cow_List<std::pair<cow_String, std::string_view>>& rows) {
  std::size_t widest = 0;
  for (const auto& row : rows) widest = std::max(widest, row.first.size());
  for (const auto& [left, right] : rows)
    out << "  " << left << cow_String(widest - left.size() + 2, ' ') << right << '\n';
}

cow_String usage(const inps_Command& command) {
  cow_String text = "inps " + cow_String(command.name);
  if (!command.operands.empty()) text += " " + cow_String(command.operands);
  for (const inps_Opt id : command.options) {
    const inps_Option& option = inps_option(id);
    text += option.letter ? cow_String(" [-") + option.letter : " [" + cow_String(option.name);
    if (!option.value.empty()) text += " " + cow_String(option.value);
    text += "]";
  }
  return text;
}

} // namespace

void inps_printUsage(aio_ostream& out, const inps_Command& command) {
  out << "usage: " << usage(command) << '\n';
}

void inps_printHelp(aio_ostream& out, const inps_Command& command) {
  for (const std::string_view example : command.examples) out << "  " << example << '\n';
  out << "\n" << command.name << ": " << command.summary << '\n';
  inps_printUsage(out, command);
  cow_List<std::pair<cow_String, std::string_view>> rows;
  for (const inps_Opt id : command.options)
    rows.emplace_back(spelt(inps_option(id)), inps_option(id).help);
  for (const inps_Opt id : inps_commonOptions())
    rows.emplace_back(spelt(inps_option(id)), inps_option(id).help);
  out << '\n';
  printColumns(out, rows);
  if (!command.details.empty()) out << '\n' << command.details << '\n';
}

void inps_printHelp(aio_ostream& out) {
  out << "  inps convert bracket.inp            deck in, bracket.sim out\n"
         "  inps info bracket.sim               what is in it\n"
         "  inps write bracket.sim -o new.inp   and back\n\n"
         "inps "
      << inps_version << ": keyword decks to simulation databases and back\n\n";
  cow_List<std::pair<cow_String, std::string_view>> rows;
  for (const inps_Command& command : inps_commands()) {
    cow_String name(command.name);
    if (!command.operands.empty()) name += " " + cow_String(command.operands);
    rows.emplace_back(std::move(name), command.summary);
  }
  printColumns(out, rows);
  out << "\n\"inps help COMMAND\" tells a command's options, \"inps -V\" the version. Data goes "
         "to\n"
         "standard output, messages to standard error; \"-\" is standard input where a file is "
         "read\n"
         "and standard output where one is made. Exit codes: 0 done, 1 a deck has errors, a model\n"
         "faults, or two models differ, 2 wrong usage, 3 file or system failure, 4 something was\n"
         "not modelled under --strict, 130 interrupted. INPS_THREADS sets the number of threads;\n"
         "NO_COLOR is heeded.\n";
}

int inps_reportUnknownCommand(inps_Session& session, std::string_view name) {
  cow_List<std::string_view> names;
  for (const inps_Command& command : inps_commands()) names.push_back(command.name);
  session.err << "inps: there is no command \"" << inps_oneLine(name) << '"'
              << inps_didYouMean(name, names) << "; \"inps help\" lists them\n";
  return inps_ExitUsage;
}

int inps_help(inps_Session& session, const inps_Arguments& arguments) {
  if (arguments.Operands().empty()) {
    inps_printHelp(session.out);
    return inps_ExitDone;
  }
  const cow_String& name = arguments.Operands().front();
  if (const inps_Command* command = inps_findCommand(name)) {
    inps_printHelp(session.out, *command);
    return inps_ExitDone;
  }
  return inps_reportUnknownCommand(session, name);
}
