// The host's ini files: reading as Windows ini files read, writing back whole.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include "support/FileSizeLimit.h"
#include "support/TestSupport.h"
#include <kestrel/frame/host/Host.h>

using namespace kestrel;
using kestrel::test::LinesOf;
using kestrel::test::TempDir;

namespace {

struct ReadCase {
  const char *what, *text, *section, *key;
  std::optional<std::string> value; // nullopt: the key is not there
};

const ReadCase kReadCases[] = {
    {"names ignore case", "[Sec]\r\nKey=Value\r\n", "sEC", "kEY", "Value"},
    {"blanks around names and values", "  [ Sec ]  \n  key  =  some value  \n", "Sec", "key",
     "some value"},
    {"quotes keep blanks", "[s]\nk=\"  padded \"\n", "s", "k", "  padded "},
    {"a lone quote stays", "[s]\nk=\"\n", "s", "k", "\""},
    {"an equals sign in the value", "[s]\nk=a=b\n", "s", "k", "a=b"},
    {"an empty value is a value", "[s]\nk=\n", "s", "k", ""},
    {"lone CR line ends", "[s]\rk=v\r", "s", "k", "v"},
    {"UTF-8 mark and no last line end", "\xEF\xBB\xBF[s]\nk=v", "s", "k", "v"},
    {"the first of two equal keys", "[s]\nk=1\nK=2\n", "s", "k", "1"},
    {"a repeated section adds to the first", "[a]\nx=1\n[b]\ny=2\n[A]\nz=3\n", "a", "z", "3"},
    {"comments are no keys", "[s]\n;k=1\n#j=2\nk=3\n", "s", "j", std::nullopt},
    {"keys before the first section are lost to reading", "k=1\n[s]\n", "s", "k", std::nullopt},
    {"a stray line is skipped", "[s]\njunk\n[broken\nk=v\n", "s", "k", "v"},
    {"bytes that are no UTF-8 stay", "[s\xE9]\nk\xFF=\xE9t\xE9\n", "s\xE9", "k\xFF", "\xE9t\xE9"},
    {"a missing section", "[s]\nk=v\n", "t", "k", std::nullopt},
};

} // namespace

TEST(TMemIniFile, ReadsAsWindowsIniFilesRead) {
  TempDir dir;
  for (const ReadCase &c : kReadCases) {
    dir.WriteFile("a.ini", c.text);
    TMemIniFile ini(dir / "a.ini");
    EXPECT_EQ(ini.ReadString(c.section, c.key, "<default>"), c.value.value_or("<default>"))
        << c.what;
    EXPECT_EQ(ini.ValueExists(c.section, c.key), c.value.has_value()) << c.what;
  }
}

TEST(TMemIniFile, SectionsWithoutKeysExistAndListsComeInFileOrder) {
  TempDir dir;
  dir.WriteFile("a.ini", "[b]\nz=1\ny=2\n[empty]\n[a]\nx=3\n");
  TMemIniFile ini(dir / "a.ini");
  TStringList list;
  EXPECT_TRUE(ini.SectionExists("EMPTY"));
  ini.ReadSections(&list);
  EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"b", "empty", "a"}));
  ini.ReadSection("b", &list);
  EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"z", "y"}));
  ini.ReadSectionValues("B", &list);
  EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"z=1", "y=2"}));
  ini.ReadSection("empty", &list);
  EXPECT_EQ(list.Count(), 0);
}

TEST(TMemIniFile, AMissingOrUnreadableFileIsAnEmptyOne) {
  TempDir dir;
  ::mkdir((dir / "folder.ini").c_str(), 0755);
  for (const std::string &name : {dir / "none.ini", dir / "folder.ini", std::string()}) {
    TMemIniFile ini(name);
    TStringList sections;
    ini.ReadSections(&sections);
    EXPECT_EQ(sections.Count(), 0) << name;
    EXPECT_EQ(ini.ReadString("s", "k", "d"), "d");
  }
}

TEST(TMemIniFile, UpdateFileWritesSectionsAndKeepsCommentsInPlace) {
  TempDir dir;
  dir.WriteFile("a.ini", "; settings\n[one]\n# note\nk=old\njunk\n[two]\nx=1\n");
  TMemIniFile ini(dir / "a.ini");
  ini.WriteString("ONE", "K", "new");
  ini.WriteString("one", "added", "2");
  ini.WriteString("three", "y", "3");
  ini.UpdateFile();
  EXPECT_EQ(test::ReadFileBytes(dir / "a.ini"),
            "; settings\r\n\r\n[one]\r\n# note\r\nk=new\r\njunk\r\nadded=2\r\n\r\n"
            "[two]\r\nx=1\r\n\r\n[three]\r\ny=3\r\n");
}

// Reading drops a UTF-8 mark at the front; a first line that itself starts
// with the mark's bytes must not lose them on the next read.
TEST(TMemIniFile, AFirstLineThatStartsLikeAMarkSurvivesWritingBack) {
  TempDir dir;
  dir.WriteFile("a.ini", "\xEF\xBB\xBF\xEF\xBB\xBF; note\n[s]\nk=v\n");
  TStringList lines;
  for (int round = 0; round < 2; ++round) {
    TMemIniFile ini(dir / "a.ini");
    ini.GetStrings(&lines);
    ASSERT_GT(lines.Count(), 0);
    EXPECT_EQ(lines[0], "\xEF\xBB\xBF\xEF\xBB\xBF; note") << round;
    ini.UpdateFile();
  }
  TMemIniFile plain("");
  plain.WriteString("s", "k", "v");
  plain.GetStrings(&lines);
  EXPECT_EQ(lines[0], "[s]"); // no mark where no line needs one
}

TEST(TMemIniFile, EveryValueReadsBackAsWritten) {
  using namespace std::string_literals;
  const std::string values[] = {
      "",    " lead",           "trail ", "\"quoted\"",     "\"",     "a\"b",  "x=y",
      ";no", "[not a section]", "\t tab", "\xE9\xFF bytes", " \"\" ", "a;b#c", "n\0ul"s};
  TempDir dir;
  {
    TMemIniFile ini(dir / "v.ini");
    for (size_t i = 0; i < std::size(values); ++i)
      ini.WriteString("s", "k" + std::to_string(i), values[i]);
    ini.UpdateFile();
  }
  TMemIniFile ini(dir / "v.ini");
  for (size_t i = 0; i < std::size(values); ++i)
    EXPECT_EQ(ini.ReadString("s", "k" + std::to_string(i), "<missing>"), values[i]) << i;
}

TEST(TMemIniFile, NamesAndValuesTheFileCannotHoldAreRefused) {
  struct Case {
    const char *section, *key, *value;
  };
  const Case cases[] = {{"a\nb", "k", "v"}, {" padded", "k", "v"}, {"s", "a=b", "v"},
                        {"s", " k", "v"},   {"s", ";k", "v"},      {"s", "[k", "v"},
                        {"s", "k\r", "v"},  {"s", "k", "a\r\nb"},  {"s", "k", "line\n"}};
  TMemIniFile ini("");
  for (const Case &c : cases) {
    EXPECT_THROW(ini.WriteString(c.section, c.key, c.value), EIniFileException) << c.key;
  }
  TStringList sections;
  ini.ReadSections(&sections);
  EXPECT_EQ(sections.Count(), 0);
}

TEST(TMemIniFile, EraseSectionAndDeleteKeyForgetThem) {
  TMemIniFile ini("");
  ini.WriteString("a", "x", "1");
  ini.WriteString("a", "y", "2");
  ini.WriteString("a", "z", "3");
  ini.WriteString("b", "x", "1");
  ini.DeleteKey("A", "Y");
  ini.DeleteKey("a", "missing");
  ini.DeleteKey("missing", "x");
  EXPECT_EQ(ini.ReadString("a", "z", ""), "3"); // the index follows the deletion
  EXPECT_EQ(ini.ReadString("a", "y", "gone"), "gone");
  ini.EraseSection("B");
  ini.EraseSection("missing");
  EXPECT_FALSE(ini.SectionExists("b"));
  TStringList lines;
  ini.GetStrings(&lines);
  EXPECT_EQ(LinesOf(lines), (std::vector<std::string>{"[a]", "x=1", "z=3"}));
  ini.Clear();
  EXPECT_FALSE(ini.SectionExists("a"));
}

TEST(TMemIniFile, TypedReadsFallBackOnTheDefault) {
  TMemIniFile ini("");
  TStringList text;
  text.SetText("[s]\nhex=0x1F\ndollar=$10\nneg=-7\nword=abc\nempty=\n"
               "zero=0\nfive=5\nfloat=1.5E-7\nbad=1,5\n");
  ini.SetStrings(&text);
  const std::pair<const char *, int32_t> integers[] = {
      {"hex", 31}, {"dollar", 16}, {"neg", -7}, {"word", 9}, {"empty", 9}};
  for (const auto &[key, value] : integers)
    EXPECT_EQ(ini.ReadInteger("s", key, 9), value) << key;
  EXPECT_FALSE(ini.ReadBool("s", "zero", true));
  EXPECT_TRUE(ini.ReadBool("s", "five", false));
  EXPECT_TRUE(ini.ReadBool("s", "word", true));
  EXPECT_DOUBLE_EQ(ini.ReadFloat("s", "float", 0), 1.5e-7);
  EXPECT_DOUBLE_EQ(ini.ReadFloat("s", "bad", 2.5), 2.5);
  EXPECT_DOUBLE_EQ(ini.ReadDate("s", "word", 3), 3);
}

TEST(TMemIniFile, TypedWritesReadBack) {
  TMemIniFile ini("");
  const TDateTime when = EncodeDateTime(2024, 2, 29, 13, 5, 9, 0);
  ini.WriteInteger("s", "i", -12);
  ini.WriteBool("s", "b", true);
  ini.WriteFloat("s", "f", -2.25e-7);
  ini.WriteFloat("s", "third", 1.0 / 3); // more digits than FloatToStr gives
  ini.WriteDate("s", "d", when);
  ini.WriteDateTime("s", "dt", when);
  ini.WriteTime("s", "t", when);
  EXPECT_EQ(ini.ReadString("s", "b", ""), "1");
  EXPECT_EQ(ini.ReadInteger("s", "i", 0), -12);
  EXPECT_EQ(ini.ReadFloat("s", "f", 0), -2.25e-7);
  EXPECT_EQ(ini.ReadString("s", "f", ""), "-2.25E-7");
  EXPECT_EQ(ini.ReadFloat("s", "third", 0), 1.0 / 3);
  EXPECT_DOUBLE_EQ(ini.ReadDate("s", "d", 0), EncodeDate(2024, 2, 29));
  EXPECT_NEAR(ini.ReadDateTime("s", "dt", 0), when, 1e-9);
  EXPECT_NEAR(ini.ReadTime("s", "t", 0), when - EncodeDate(2024, 2, 29), 1e-9);
}

TEST(TMemIniFile, BinaryStreamsGoAsHexadecimalPairs) {
  TMemIniFile ini("");
  TMemoryStream source;
  const unsigned char bytes[] = {0x00, 0xFF, 0x10, 0xAB};
  source.WriteBuffer(bytes, 4);
  source.SetPosition(1); // from the position on
  ini.WriteBinaryStream("s", "bin", &source);
  EXPECT_EQ(ini.ReadString("s", "bin", ""), "FF10AB");
  TMemoryStream target;
  EXPECT_EQ(ini.ReadBinaryStream("s", "bin", &target), 3);
  EXPECT_EQ(target.Size(), 3);
  ini.WriteString("s", "bad", "0aG1");
  EXPECT_EQ(ini.ReadBinaryStream("s", "bad", &target), 1); // up to the first bad pair
  EXPECT_EQ(ini.ReadBinaryStream("s", "missing", &target), 0);
}

TEST(TMemIniFile, AFailedUpdateRaisesAndLeavesTheOldFileWhole) {
  TempDir dir;
  const std::string old = "[old]\r\nk=v\r\n";
  dir.WriteFile("a.ini", old);
  TMemIniFile ini(dir / "a.ini");
  for (int i = 0; i < 20; ++i)
    ini.WriteString("new", "key" + std::to_string(i), std::string(40, 'x'));
  {
    test::FileSizeLimit disk(64);
    EXPECT_THROW(ini.UpdateFile(), EFCreateError);
  }
  EXPECT_EQ(test::ReadFileBytes(dir / "a.ini"), old);
  EXPECT_EQ(test::EntriesIn(dir.Path()), 1u); // a.ini
  TMemIniFile nowhere(dir / "no/such/folder/a.ini");
  nowhere.WriteString("s", "k", "v");
  EXPECT_THROW(nowhere.UpdateFile(), EFCreateError);
}
