// The log file: one open-append-close per line, and logging that turns itself
// off when a line cannot be written.
#include <gtest/gtest.h>

#include <regex>

#include "support/FileSizeLimit.h"
#include "support/TestSupport.h"
#include <kestrel/files/logging_utilities.h>
#include <kestrel/frame/host/SysUtils.h>

using namespace kestrel;
using kestrel::test::TempDir;

namespace {

// Each test starts with logging off and no file name, and leaves it so.
class LogFile : public ::testing::Test {
protected:
  void SetUp() override { Reset(); }
  void TearDown() override { Reset(); }
  static void Reset() {
    keeping_log = false;
    SetLogFilename("");
  }
  void Start(const std::string &name) {
    SetLogFilename(name);
    keeping_log = true;
  }
  TempDir dir;
};

const std::regex
    kSection("\\*{7}\r\nLOG STARTED at \\d{4}-\\d\\d-\\d\\d( \\d\\d:\\d\\d:\\d\\d)?\r\n");

} // namespace

TEST_F(LogFile, LinesAreAppendedWithCrLfInTheSystemCodePage) {
  Start(dir / "run.log");
  AddToLogFile(u"first");
  EXPECT_EQ(test::ReadFileBytes(dir / "run.log"), "first\r\n");
  AddToLogFile(u"caf\u00E9 \u20AC");
  AddToLogFile(std::u16string(1, char16_t(0xD800))); // a lone half: the converter's substitute
  EXPECT_EQ(test::ReadFileBytes(dir / "run.log"),
            "first\r\ncaf\xC3\xA9 \xE2\x82\xAC\r\n\xEF\xBF\xBD\r\n");
  EXPECT_TRUE(keeping_log);
}

TEST_F(LogFile, NothingIsWrittenWithLoggingOffOrNoName) {
  SetLogFilename(dir / "run.log");
  AddToLogFile(u"off");
  StartNewLogSection();
  EXPECT_FALSE(FileExists(dir / "run.log"));
  Start("");
  AddToLogFile(u"no name");
  EXPECT_TRUE(keeping_log); // nothing failed
}

TEST_F(LogFile, AFailedLineTurnsLoggingOffForGood) {
  Start(dir / "no/such/folder/run.log");
  AddToLogFile(u"lost");
  EXPECT_FALSE(keeping_log);
  ASSERT_TRUE(ForceDirectories(dir / "no/such/folder"));
  AddToLogFile(u"still off");
  EXPECT_FALSE(FileExists(dir / "no/such/folder/run.log"));

  Start(dir / "full.log");
  {
    test::FileSizeLimit disk(8);
    AddToLogFile(u"a line longer than the disk");
  }
  EXPECT_FALSE(keeping_log);
}

TEST_F(LogFile, SectionsStartWithTwoLinesAndClearingStartsOneOnlyWhereAFileWas) {
  Start(dir / "run.log");
  ClearLogFile(); // no file: nothing is created
  EXPECT_FALSE(FileExists(dir / "run.log"));
  StartNewLogSection();
  EXPECT_TRUE(std::regex_match(test::ReadFileBytes(dir / "run.log"), kSection));
  AddToLogFile(u"old line");
  ClearLogFile();
  EXPECT_TRUE(std::regex_match(test::ReadFileBytes(dir / "run.log"), kSection));
  keeping_log = false;
  ClearLogFile(); // logging off: deleted, and no new one
  EXPECT_FALSE(FileExists(dir / "run.log"));
  SetLogFilename("");
  ClearLogFile();
}
