#include "tests/base/TemporaryFolder.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

struct File {
  const char* name;
  cow_String text;
};

// Writes the files and parses the first one.
class Include : public testing::Test {
protected:
  Parsed Parse(const cow_List<File>& files, const cow_String& directory = {},
               const cow_List<cow_String>& search = {}) {
    for (const File& file : files) {
      std::filesystem::create_directories((folder / file.name).parent_path());
      writeFile(folder / file.name, file.text);
    }
    return Parsed(utl_pathText(folder / files.front().name), true, false, directory, search);
  }
  cow_String PathOf(const char* name) const { return utl_pathText(folder / name); }

  TemporaryFolder folder;
};

cow_String text(const inp_KeywordList& keywords) {
  cow_String out;
  for (const inp_Keyword& keyword : keywords) out += keyword.Text();
  return out;
}

} // namespace

TEST_F(Include, StandsInItsPlace) {
  const Parsed parsed =
      Parse({{"a.inp", "*NODE\n1\n*include, input=sub/b.inc\n3\n*NSET\n1"},
             {"sub/b.inc", "2\n*ELEMENT\n1\n** c\n*Include,\n input = \"c d.inc\"\n4"},
             {"sub/c d.inc", "2\r\n3"}});
  EXPECT_EQ(shown(parsed.files) + shown(parsed.errors), "");
  EXPECT_EQ(text(parsed.keywords), "*NODE\n1\n2\n*ELEMENT\n1\n2\n3\n4\n3\n*NSET\n1\n");
}

TEST_F(Include, PlacesTellTheChain) {
  const Parsed parsed = Parse({{"a.inp", "*NODE\n\n*INCLUDE, INPUT=b.inc\n*NSET\n"},
                               {"b.inc", "** one\n*INCLUDE, INPUT=c.inc\n7, 8\n"},
                               {"c.inc", "5, 6\n*ELEMENT\n1,\n"}});
  const inp_DataArray& nodes = parsed.keywords.at(0).Data();
  ASSERT_EQ(nodes.Rows(), 2); // the blank line, and the one of c.inc
  wip_Place place = nodes.PlaceOf(1, 1);
  EXPECT_EQ(place.file, PathOf("c.inc"));
  EXPECT_EQ(place.line, 1);
  EXPECT_EQ(place.column, 4);
  EXPECT_EQ(place.sourceLine, "5, 6");
  const cow_List<cow_String> chain{PathOf("b.inc") + ":2", PathOf("a.inp") + ":3"};
  EXPECT_EQ(place.includedFrom, chain);
  place = parsed.keywords.at(1).Place();
  EXPECT_EQ(place.line, 2);
  EXPECT_EQ(place.width, 8);
  EXPECT_EQ(place.includedFrom, chain);
  place = parsed.keywords.at(1).Data().PlaceOf(1, 1); // the element goes on behind the include
  EXPECT_EQ(place.file, PathOf("b.inc"));
  EXPECT_EQ(place.line, 3);
  EXPECT_TRUE(parsed.keywords.at(2).Place().includedFrom.empty());
}

TEST_F(Include, LooksInTheFoldersInTurn) {
  const Parsed parsed = Parse({{"in/a.inp", "*INCLUDE, INPUT=x.inc\n*INCLUDE, INPUT=y.inc\n"
                                            "*INCLUDE, INPUT=z.inc\n*INCLUDE, INPUT=sub\\w.inc\n"},
                               {"in/x.inc", "*NODE"},
                               {"dir/x.inc", "*NSET"},
                               {"dir/y.inc", "*ELEMENT"},
                               {"far/y.inc", "*NSET"},
                               {"far/z.inc", "*ELSET"},
                               {"in/sub/w.inc", "*NSET"}},
                              PathOf("dir"), {PathOf("none"), PathOf("far")});
  EXPECT_EQ(shown(parsed.files), "");
  EXPECT_EQ(shown(parsed.keywords), "NODE; ELEMENT; ELSET; NSET");
}

TEST_F(Include, ReportsWhatCannotBeRead) {
  const Parsed parsed =
      Parse({{"a.inp", "*NODE\n*INCLUDE, INPUT=none.inc\n*INCLUDE, INPUT=sub\n"
                       "*INCLUDE\n*INCLUDE, INPUT=bin.inc\n"
                       "*INCLUDE, INPUT=utf16.inc\n*NSET\n*INCLUDE, INPUT=empty\n"},
             {"sub/b.inc", ""},
             {"bin.inc", cow_String("*NODE\n1, 2\n\0\0", 13)},
             {"utf16.inc", cow_String("\xFF\xFE*\0N\0", 6)},
             {"empty", ""}});
  ASSERT_EQ(parsed.files.size(), 5u);
  EXPECT_EQ(parsed.files[0].place.line, 2);
  EXPECT_EQ(parsed.files[0].text, "there is no file \"none.inc\"");
  EXPECT_EQ(parsed.files[0].notes.at(0).text, "looked for in: " + utl_pathText(folder.Path()));
  EXPECT_EQ(parsed.files[1].place.line, 3);
  EXPECT_EQ(parsed.files[1].place.column, 11);
  EXPECT_EQ(parsed.files[2].text, "INPUT is missing: what file?");
  EXPECT_EQ(parsed.files[3].text, "this is not a deck: binary data at line 3");
  EXPECT_EQ(parsed.files[3].place.includedFrom.at(0), PathOf("a.inp") + ":5");
  EXPECT_NE(parsed.files[4].text.find("UTF-16"), cow_String::npos);
  EXPECT_EQ(shown(parsed.keywords), "NODE; NSET");
}

TEST_F(Include, PipesAndDevicesAreNoFiles) {
  if (!utl_exists("/dev/null")) GTEST_SKIP() << "no device to name";
  const Parsed parsed =
      Parse({{"a.inp", "*NODE, INPUT=/dev/null\n1, 2.\n*INCLUDE, INPUT=/dev/null\n"}});
  const char* const reason =
      "cannot read \"/dev/null\": it is a pipe or a device; only files are included\n";
  EXPECT_EQ(shown(parsed.files), cow_String("1:8 ") + reason + "3:11 " + reason);
}

TEST_F(Include, CyclesAreCut) {
  const Parsed parsed = Parse({{"a.inp", "*NODE\n*INCLUDE, INPUT=b.inc\n*NSET\n"},
                               {"b.inc", "*ELEMENT\n*INCLUDE, INPUT=./a.inp\n*ELSET\n"}});
  ASSERT_EQ(parsed.files.size(), 1u);
  EXPECT_EQ(parsed.files[0].text,
            "the file \"" + PathOf("a.inp") + "\" includes itself; it is not read again");
  EXPECT_EQ(parsed.files[0].place.file, PathOf("b.inc"));
  EXPECT_EQ(parsed.files[0].place.includedFrom.at(0), PathOf("a.inp") + ":2");
  EXPECT_EQ(shown(parsed.keywords), "NODE; ELEMENT; ELSET; NSET");
}

TEST_F(Include, DepthIsLimited) {
  cow_List<cow_String> names;
  for (int i = 0; i < 150; ++i) names.push_back("f" + std::to_string(i));
  cow_List<File> files;
  for (std::size_t i = 0; i + 1 < names.size(); ++i)
    files.push_back({names[i].c_str(), "*INCLUDE, INPUT=" + names[i + 1] + "\n*NODE\n"});
  const Parsed parsed = Parse(files);
  ASSERT_EQ(parsed.files.size(), 1u);
  EXPECT_EQ(parsed.files[0].place.includedFrom.size(), 100u);
  EXPECT_EQ(parsed.keywords.size(), 101u);
}

TEST_F(Include, MeshDataMayStandInAFile) {
  const Parsed parsed =
      Parse({{"a.inp", "*NODE, INPUT=Nodes.dat, NSET=A\n3, 0.\n*ELEMENT, TYPE=T3D2, FILE=els.dat,\n"
                       "*NODE, INPUT=bad.dat\n*ELEMENT,\nINPUT=els.dat,\nTYPE=T3D2\n"},
             {"Nodes.dat", "** nodes\n1, 0.\n2, 0."},
             {"els.dat", "1, 1, 2\n"},
             {"bad.dat", "9\n*NODE\n10\n"}});
  EXPECT_EQ(shown(parsed.files), "");
  ASSERT_EQ(parsed.keywords.size(), 4u);
  EXPECT_EQ(parsed.keywords[0].Text(), "*NODE, NSET=A\n1, 0.\n2, 0.\n3, 0.\n");
  EXPECT_EQ(parsed.keywords[0].Data().PlaceOf(1, 0).file, PathOf("Nodes.dat"));
  EXPECT_EQ(parsed.keywords[0].Data().PlaceOf(1, 0).line, 3);
  EXPECT_EQ(parsed.keywords[0].Data().PlaceOf(2, 0).line, 2);
  EXPECT_EQ(parsed.keywords[1].Text(), "*ELEMENT, TYPE=T3D2\n1, 1, 2\n");
  EXPECT_EQ(parsed.keywords[2].Text(), "*NODE\n9\n");
  EXPECT_EQ(parsed.keywords[3].Text(), "*ELEMENT, TYPE=T3D2\n1, 1, 2\n");
  ASSERT_EQ(parsed.errors.size(), 1u);
  EXPECT_EQ(parsed.errors[0].place.file, PathOf("bad.dat"));
  EXPECT_EQ(parsed.errors[0].place.line, 2);
}

TEST_F(Include, OtherFilesAreNoDataLines) {
  const Parsed parsed =
      Parse({{"a.inp", "*USER ELEMENT, TYPE=Z1, NODES=2, FILE=els.dat\n"
                       "*TEMPERATURE, FILE=els.dat\n*NSET, NSET=A, INPUT=els.dat\n"
                       "*TEMPERATURE, INPUT=els.dat\n"},
             {"els.dat", "1, 1, 2\n"}});
  const long long rows[] = {0, 0, 1, 1};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(parsed.keywords.at(i).Data().Rows(), rows[i]) << i;
  EXPECT_EQ(shown(parsed.warnings), "");
}

// Of what nobody opens, the name alone goes into another deck.
TEST_F(Include, NamesThatAreKeptAreKnown) {
  const Parsed parsed =
      Parse({{"a.inp", "*BOUNDARY, FILE=main.txt\n*INCLUDE, INPUT=sub/b.inp\n"},
             {"sub/b.inp", "*TEMPERATURE, FILE=beside.txt\n*TEMPERATURE, FILE=main.txt\n"
                           "*TEMPERATURE, FILE=later.txt\n*TEMPERATURE, FILE=" +
                               PathOf("sub/beside.txt") + "\n"},
             {"main.txt", ""},
             {"sub/beside.txt", ""}},
            utl_pathText(folder.Path()));
  cow_String told;
  for (const wip_Message& message : parsed.warnings)
    if (message.text.find(" lies in ") != cow_String::npos)
      told += std::to_string(message.place.line) + ' ' + message.text + '\n';
  EXPECT_EQ(told, "1 \"beside.txt\" lies in \"" + PathOf("sub") +
                      "\", beside the file that names it; a written deck names it without this "
                      "folder\n");
}

TEST_F(Include, AJobNameStandsForThePath) {
  writeFile(folder / "a.inp", "*NODE\n*INCLUDE, INPUT=b.inp");
  writeFile(folder / "b.inp", "*ELEMENT");
  inp_Parser parser(PathOf("a.inp"), "", {}, "Job-1", true, true, false);
  EXPECT_EQ(parser.Parse(true).at(0).FileName(), "Job-1");
  EXPECT_EQ(parser.FileErrors().at(0).notes.at(0).text, "looked for in: .");
  inp_Parser found(PathOf("a.inp"), utl_pathText(folder.Path()), {}, "Job-1", true, true, false);
  EXPECT_EQ(found.Parse(true).size(), 2u);
}
