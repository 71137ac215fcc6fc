#include "host/inps_Arguments.h"
#include "tests/host/ProgramRun.h"

namespace {

struct WrongUse {
  cow_List<cow_String> words;
  const char* says;
};

TEST(Arguments, WrongUseIsNamedAndEndsWithTwo) {
  const WrongUse cases[] = {
      {{"convret", "a.inp"}, "there is no command \"convret\" (did you mean \"convert\"?)"},
      {{"frobnicate"}, "there is no command \"frobnicate\"; \"inps help\" lists them"},
      {{"convert"}, "\"convert\" needs DECK"},
      {{"diff", "a.sim"}, "\"diff\" needs A B"},
      {{"convert", "a.inp", "b.inp"}, "\"convert\" has no use for \"b.inp\""},
      {{"convert", "a.inp", "--froce"}, "no option \"--froce\" (did you mean \"--force\"?)"},
      {{"convert", "a.inp", "-x"}, "\"convert\" has no option \"-x\""},
      {{"write", "a.sim", "--restart", "b"}, "\"write\" has no option \"--restart\""},
      {{"convert", "a.inp", "-o"}, "\"-o\" needs a value: FILE"},
      {{"convert", "a.inp", "--output="}, "\"--output\" needs a value: FILE"},
      {{"convert", "a.inp", "--force=yes"}, "\"--force\" takes no value"},
      {{"convert", "a.inp", "-oa", "--output", "b"}, "\"--output\" is given twice"},
      {{"convert", ""}, "\"convert\" is given an empty name"},
      {{"convert", "a.inp", "--restart", "b.sim"}, "\"--restart\" needs \"-o FILE\""},
      {{"info", "a.sim", "--memory", "lots"}, "a size from 32M on"},
      {{"info", "a.sim", "--memory", "G"}, "not \"G\""},
      {{"info", "a.sim", "--memory=40"}, "not \"40\""},
      {{"info", "a.sim", "--memory=-1G"}, "not \"-1G\""},
      {{"info", "a.sim", "--memory=1e99T"}, "not \"1e99T\""},
      {{"info", "a.sim", "--memroy=1G"}, "(did you mean \"--memory\"?)"},
      {{"help", "nothing"}, "there is no command \"nothing\""},
  };
  for (const WrongUse& wrong : cases) {
    const ProgramRun run(wrong.words);
    EXPECT_EQ(run.exitCode, 2) << wrong.says;
    EXPECT_TRUE(run.Says(wrong.says)) << run.err;
    EXPECT_EQ(run.out, "") << wrong.says;
  }
}

TEST(Arguments, EverySpellingOfAnOptionIsRead) {
  const inps_Command& convert = *inps_findCommand("convert");
  const cow_List<cow_List<cow_String>> spellings = {{"d.inp", "-o", "m.sim"},
                                                    {"-om.sim", "d.inp"},
                                                    {"--output", "m.sim", "d.inp"},
                                                    {"--output=m.sim", "--", "d.inp"}};
  for (const cow_List<cow_String>& words : spellings) {
    inps_Arguments arguments;
    EXPECT_EQ(arguments.Read(convert, words), "");
    EXPECT_EQ(arguments.ValueOf(inps_Opt::Output), "m.sim");
    EXPECT_EQ(arguments.Operands(), cow_List<cow_String>{"d.inp"});
    EXPECT_FALSE(arguments.Has(inps_Opt::Force));
  }
  inps_Arguments dashed;
  EXPECT_EQ(dashed.Read(convert, cow_List<cow_String>{"--", "-odd name.inp"}), "");
  EXPECT_EQ(dashed.Operands().front(), "-odd name.inp");
}

TEST(Arguments, HelpStartsWithExamplesAndNamesEveryOption) {
  for (const inps_Command& command : inps_commands()) {
    for (const cow_List<cow_String>& words :
         {cow_List<cow_String>{cow_String(command.name), "--help"},
          cow_List<cow_String>{"help", cow_String(command.name)}}) {
      const ProgramRun run(words);
      EXPECT_EQ(run.exitCode, 0);
      EXPECT_TRUE(run.out.starts_with("  inps " + cow_String(command.name))) << run.out;
      for (const inps_Opt option : command.options)
        EXPECT_NE(run.out.find(inps_option(option).help), cow_String::npos) << command.name;
    }
  }
  EXPECT_EQ(ProgramRun({}).exitCode, 2);
  EXPECT_EQ(ProgramRun({"--help"}).out, ProgramRun({"help"}).out);
}

TEST(Arguments, NearestIsNearOrNothing) {
  const std::string_view names[] = {"convert", "write", "check", "info"};
  EXPECT_EQ(inps_nearest("conv", names), "convert");
  EXPECT_EQ(inps_nearest("wirte", names), "write");
  EXPECT_EQ(inps_nearest("chekc", names), "check");
  EXPECT_EQ(inps_nearest("zzzzz", names), "");
  EXPECT_EQ(inps_nearest(cow_String(100000, 'x'), names), "");
}

} // namespace
