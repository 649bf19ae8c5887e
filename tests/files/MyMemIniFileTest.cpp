// TMyMemIniFile: Booleans as YES and NO, and backups of the file on disk.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "support/TestSupport.h"
#include <kestrel/files/inifileU2.h>

using namespace kestrel;
using kestrel::test::TempDir;

TEST(TMyMemIniFile, BooleansAreWordsReadByTheDefaultsFirstLetter) {
  struct Case {
    const char *stored; // null: no key
    bool withTrue, withFalse;
  };
  const Case cases[] = {{nullptr, true, false},   {"Yes", true, true},  {"Y", true, true},
                        {"No", false, false},     {"yes", false, true}, {"no", false, true},
                        {"1", false, true},       {"", false, true},    {"Nonsense", false, false},
                        {"Yesterday", true, true}};
  TMyMemIniFile ini("");
  for (const Case &c : cases) {
    ini.DeleteKey("s", "k");
    if (c.stored) ini.WriteString("s", "k", c.stored);
    const std::string what = c.stored ? c.stored : "(missing)";
    EXPECT_EQ(ini.ReadBool("s", "k", true), c.withTrue) << what;
    EXPECT_EQ(ini.ReadBool("s", "k", false), c.withFalse) << what;
  }
  ini.WriteBool("s", "on", true);
  ini.WriteBool("s", "off", false);
  EXPECT_EQ(ini.ReadString("s", "on", ""), "YES");
  EXPECT_EQ(ini.ReadString("s", "off", ""), "NO");
}

TEST(TMyMemIniFile, SaveABackupCopiesTheDiskFileNotTheMemory) {
  TempDir dir;
  EXPECT_FALSE(TMyMemIniFile("").SaveABackup());
  EXPECT_FALSE(TMyMemIniFile(dir / "none.ini").SaveABackup());
  EXPECT_FALSE(FileExists(dir / "none.BAK"));

  dir.WriteFile("a.ini", "[s]\r\nk=1\r\n");
  dir.WriteFile("a.BAK", "an older backup");
  TMyMemIniFile ini(dir / "a.ini");
  ini.WriteString("s", "k", "2");
  EXPECT_TRUE(ini.SaveABackup());
  ini.UpdateFile();
  EXPECT_EQ(test::ReadFileBytes(dir / "a.BAK"), "[s]\r\nk=1\r\n");
  EXPECT_EQ(test::ReadFileBytes(dir / "a.ini"), "[s]\r\nk=2\r\n");

  dir.WriteFile("settings", "[s]\r\n");
  EXPECT_TRUE(TMyMemIniFile(dir / "settings").SaveABackup());
  EXPECT_EQ(test::ReadFileBytes(dir / "settings.BAK"), "[s]\r\n");

  // True even when the copy fails.
  dir.WriteFile("b.ini", "[s]\r\n");
  ::mkdir((dir / "b.BAK").c_str(), 0755); // a folder where the backup would go
  EXPECT_TRUE(TMyMemIniFile(dir / "b.ini").SaveABackup());
  EXPECT_FALSE(FileExists(dir / "b.BAK"));
}
