#include "host/inps_Commands.h"

#include "base/utl_Assert.h"
#include "host/inps_Arguments.h"
#include <algorithm>

namespace {

using Text = std::string_view;
using Opt = inps_Opt;

constexpr inps_Option options[] = {
    {Opt::Output, 'o', "--output", "FILE", "the file to make"},
    {Opt::Force, 0, "--force", "", "replace an existing file, once the new one is finished"},
    {Opt::Strict, 0, "--strict", "", "exit with 4 when something was not modelled"},
    {Opt::Salvage, 0, "--salvage", "", "store what is sound of a mesh that has errors"},
    {Opt::Restart, 0, "--restart", "BASE.sim",
     "go on from this model; it stays as it is and a copy is changed"},
    {Opt::Sets, 0, "--sets", "", "every set as a block of its own, listed in MESH.vtm"},
    {Opt::Surfaces, 0, "--surfaces", "", "every surface as a block of its own, likewise"},
    {Opt::Axes, 0, "--axes", "", "local axes of elements, from the orientations of their sections"},
    {Opt::Compress, 0, "--compress", "HOW",
     "lz4, zlib or none: how arrays are compressed; lz4 without it"},
    {Opt::Step, 0, "--step", "N", "what acts in the N-th step: loads, supports, pressures"},
    {Opt::Timings, 0, "--timings", "", "time of every phase and peak memory"},
    {Opt::Json, 0, "--json", "", "one JSON object on standard output, every message in full"},
    {Opt::Loads, 0, "--loads", "", "the labels of loads: on which elements, what follows, units"},
    {Opt::Markdown, 0, "--markdown", "", "as a table for documents"},
    {Opt::NoKept, 0, "--no-kept", "", "say nothing of keywords that are kept as text"},
    {Opt::Tolerance, 0, "--tolerance", "ABS[,REL]",
     "numbers are the same that differ by ABS at most, or by REL times the larger one"},
    {Opt::Materials, 0, "--materials", "",
     "every material with its behaviors, their rows and ranges"},
    {Opt::Sections, 0, "--sections", "",
     "every section: its set, material, orientation, elements and thickness"},
    {Opt::History, 0, "--history", "", "every step, and what acts in it"},
    {Opt::Quiet, 'q', "--quiet", "", "errors only"},
    {Opt::Memory, 0, "--memory", "SIZE",
     "the most memory to take, as 512M or 40G; without it seven eighths of what there is"},
    {Opt::Color, 0, "--color", "WHEN",
     "auto, always or never; auto: on a terminal, unless NO_COLOR is set"},
    {Opt::Help, 'h', "--help", "", "this help"},
};

constexpr Opt commonOptions[] = {Opt::Memory, Opt::Color, Opt::Help};
constexpr Opt convertOptions[] = {Opt::Output,  Opt::Force,   Opt::Strict,
                                  Opt::Salvage, Opt::Restart, Opt::NoKept,
                                  Opt::Timings, Opt::Json,    Opt::Quiet};
constexpr Text convertExamples[] = {
    "inps convert bracket.inp", "inps convert bracket.inp -o models/bracket.sim --force",
    "inps convert next_steps.inp --restart bracket.sim -o bracket2.sim"};
constexpr Opt writeOptions[] = {Opt::Output, Opt::Force, Opt::Timings};
constexpr Text writeExamples[] = {"inps write bracket.sim -o written.inp",
                                  "inps write bracket.sim | less"};
constexpr Opt exportOptions[] = {Opt::Force,    Opt::Sets,    Opt::Surfaces, Opt::Axes, Opt::Step,
                                 Opt::Compress, Opt::Timings, Opt::Json,     Opt::Quiet};
constexpr Text exportExamples[] = {"inps export bracket.sim bracket.vtu",
                                   "inps export bracket.sim bracket.vtu --sets --surfaces --force",
                                   "inps export bracket.sim loads.vtu --step 1"};
constexpr Opt checkOptions[] = {Opt::Strict, Opt::NoKept, Opt::Timings, Opt::Json, Opt::Quiet};
constexpr Text checkExamples[] = {"inps check bracket.inp", "inps check decks/*.inp --no-kept",
                                  "inps check bracket.sim"};
constexpr Opt infoOptions[] = {Opt::Materials, Opt::Sections, Opt::History, Opt::Json};
constexpr Text infoExamples[] = {"inps info bracket.sim",
                                 "inps info bracket.sim --materials",
                                 "inps info bracket.sim --materials steel",
                                 "inps info bracket.sim --sections",
                                 "inps info bracket.sim --history 2 Cooling",
                                 "inps info bracket.sim --json"};
constexpr Opt plotOptions[] = {Opt::Output, Opt::Force};
constexpr Text plotExamples[] = {"inps plot bracket.sim -o plots.html",
                                 "inps plot bracket.sim STEEL BOLT-LOAD --force"};
constexpr Opt deriveOptions[] = {Opt::Output, Opt::Force, Opt::Timings, Opt::Json, Opt::Quiet};
constexpr Text deriveExamples[] = {"inps derive bracket.sim",
                                   "inps derive bracket.sim -o derived.sim --force"};
constexpr Opt diffOptions[] = {Opt::Tolerance, Opt::NoKept, Opt::Json, Opt::Quiet};
constexpr Text diffExamples[] = {"inps diff old.sim new.sim", "inps diff bracket.inp bracket.sim",
                                 "inps diff old.sim new.sim --tolerance 1e-12,1e-9"};
constexpr Text dumpExamples[] = {"inps dump bracket.sim | less"};
constexpr Opt keywordsOptions[] = {Opt::Loads, Opt::Json, Opt::Markdown};
constexpr Text keywordsExamples[] = {"inps keywords", "inps keywords --loads",
                                     "inps keywords --json"};
constexpr Text helpExamples[] = {"inps help convert"};

constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

constexpr inps_Command commands[] = {
    {"convert", "DECK", 1, 1, "fill a simulation database from a keyword deck",
     "Without -o the model is named as the deck, with .sim, in the current folder. A deck with\n"
     "errors still gives a model of what could be converted. With --restart, give -o too, or\n"
     "--force to have BASE.sim itself replaced. With -o - the finished model goes to standard\n"
     "output.",
     convertOptions, convertExamples, inps_convert},
    {"write", "MODEL.sim", 1, 1, "write a keyword deck from a model",
     "Without -o, or with -o -, the deck goes to standard output.", writeOptions, writeExamples,
     inps_write},
    {"export", "MODEL.sim MESH.vtu", 2, 2, "the mesh as a VTK file to look at",
     "An unstructured grid with instances in their places: labels of nodes and elements, element\n"
     "types, instances and parts with their names, sections, their materials and thicknesses, and\n"
     "the sets as arrays of 0 and 1. With --axes, Axis1 to Axis3 are vectors of each element. "
     "With\n"
     "--sets, --surfaces or --step, MESH.vtm lists the mesh and its blocks, which go into a "
     "folder\n"
     "MESH beside it.\n"
     "With --step, nodes have what acts on them in that step: Force and Moment (the sum of "
     "loads),\n"
     "FixedDofs (bit 0: degree of freedom 1; VelocityDofs and AccelerationDofs: those of which "
     "that\n"
     "is prescribed), Displacement and Rotation (or Velocity, Acceleration and so on), as "
     "prescribed,\n"
     "Temperature. Vectors are in global components, and 0 where nothing is prescribed; arrays "
     "of\n"
     "numbers, such as Temperature, have none there (NaN). Faces with a pressure are blocks with "
     "an\n"
     "array Pressure. Magnitudes are those of the deck, before amplitudes. Load cases, by name or\n"
     "number, have blocks of their own. What has no array is told.\n"
     "A deck is taken too. With - for MESH.vtu the mesh goes to standard output.",
     exportOptions, exportExamples, inps_export, 1},
    {"check", "DECK|MODEL.sim...", 1, anyNumber, "report every problem, make no file",
     "A deck is converted in memory. Of a model, every checksum and reference is verified. "
     "Several\n"
     "are checked at once, told of one after the other in the order given, with a line for each "
     "at\n"
     "its end; the exit code is the worst: 3, then 1, then 4.",
     checkOptions, checkExamples, inps_check},
    {"info", "MODEL.sim [NAME...]", 1, anyNumber, "what a model holds",
     "With --materials, names choose the materials and gasket behaviors that are listed, with\n"
     "--sections the sections, with --history the steps, by number or name. The case of letters\n"
     "counts only where the model has both spellings.",
     infoOptions, infoExamples, inps_info},
    {"plot", "MODEL.sim [NAME...]", 1, anyNumber, "draw materials and amplitudes in one HTML page",
     "Without -o the page is named as the model, with .html, in the current folder. It needs no\n"
     "network and no other file. Of large models the first 300 materials and amplitudes are drawn\n"
     "and the rest is listed; names choose what is drawn.",
     plotOptions, plotExamples, inps_plot},
    {"derive", "MODEL.sim", 1, 1, "make anew what follows from a model's given records",
     "The history and what is in force in its steps, which elements have which section, local\n"
     "systems: for a model that another program has changed. A copy is changed, which takes the\n"
     "model's place, or the name of -o, when it is whole. With -o - it goes to standard output.",
     deriveOptions, deriveExamples, inps_derive},
    {"diff", "A B", 2, 2, "compare two models or decks record by record",
     "Exits with 0 when they are the same, 1 when they differ or a deck has errors, also the one\n"
     "that a model was made from. Where a keyword stood in its deck does not count. A tolerance\n"
     "is for stored real numbers; texts, also those of keywords kept as text, are compared letter\n"
     "by letter.",
     diffOptions, diffExamples, inps_diff},
    {"dump",
     "MODEL.sim",
     1,
     1,
     "a whole model (or deck) as stable text",
     "",
     {},
     dumpExamples,
     inps_dump},
    {"keywords", "", 0, 0, "which keywords are modelled, which are kept as text", "",
     keywordsOptions, keywordsExamples, inps_keywords},
    {"help", "[COMMAND]", 0, 1, "this help, or that of a command", "", {}, helpExamples, inps_help},
};

} // namespace

std::span<const inps_Command> inps_commands() {
  return commands;
}

std::span<const inps_Opt> inps_commonOptions() {
  return commonOptions;
}

const inps_Command* inps_findCommand(std::string_view name) {
  const auto found = std::ranges::find(commands, name, &inps_Command::name);
  return found == std::end(commands) ? nullptr : &*found;
}

const inps_Option& inps_option(inps_Opt id) {
  const auto found = std::ranges::find(options, id, &inps_Option::id);
  utl_ASSERT(found != std::end(options));
  return *found;
}
