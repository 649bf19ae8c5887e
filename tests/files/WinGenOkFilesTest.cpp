// The file and folder functions of WinGenOk: new names, listings, questions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

#include <kestrel/files/WinGenOk.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Volumes.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::LinesOf;
using kestrel::test::ReadFileBytes;
using kestrel::test::ScriptedMessageBoxes;
using kestrel::test::TempDir;
namespace fs = std::filesystem;

namespace {

TEST(WinGenOkFiles, ForcedToBeNewFileNumbersTakenNames) {
  TempDir dir;
  std::string name = dir / "out";
  EXPECT_TRUE(ForcedToBeNewFile(name));
  EXPECT_EQ(name, dir / "out."); // free: only the dot
  name = dir / "out.txt";
  ForcedToBeNewFile(name);
  EXPECT_EQ(name, dir / "out.txt");

  dir.WriteFile("out.txt", "");
  SetBatchFileStartNumberTo(0);
  ForcedToBeNewFile(name);
  EXPECT_EQ(name, dir / "out001.txt");
  dir.WriteFile("out001.txt", "");
  name = dir / "out.txt";
  SetBatchFileStartNumberTo(0);
  ForcedToBeNewFile(name);
  EXPECT_EQ(name, dir / "out001002.txt"); // the numbers pile up
  EXPECT_EQ(GetBatchFileStartNumber(), 2);

  name = dir / "out.txt";
  SetBatchFileStartNumberTo(999);
  ForcedToBeNewFile(name);
  EXPECT_EQ(name, dir / "out1000.txt");
  SetBatchFileStartNumberTo(-5);
  EXPECT_EQ(GetBatchFileStartNumber(), 0);
}

// The buffer after StrForcedToBeNewFile on `room` characters holding the name, from 0.
std::string StrForced(const std::string &name, size_t room) {
  std::vector<char> buffer(std::max(room, name.size() + 1));
  std::memcpy(buffer.data(), name.c_str(), name.size() + 1);
  SetBatchFileStartNumberTo(0);
  EXPECT_TRUE(StrForcedToBeNewFile(buffer.data(), room)) << name;
  return buffer.data();
}

TEST(WinGenOkFiles, StrForcedToBeNewFileMakesAnEightCharacterStem) {
  TempDir dir;
  struct Case {
    const char *name, *result;
  } cases[] = {{"ABC.TXT", "abc00001.txt"},
               {"LongFileName.Dat", "longfil1.dat"},
               {"noext", "noext001."},
               {"a.b.c", "a.b00001.c"}};
  for (const Case &c : cases)
    EXPECT_EQ(StrForced(dir / c.name, 512), dir / c.result) << c.name;
  dir.WriteFile("abc00001.txt", "");
  dir.WriteFile("abc00002.txt", "");
  EXPECT_EQ(StrForced(dir / "abc.txt", 512), dir / "abc00003.txt");
  const std::string fits = dir / "x0000001.t";
  EXPECT_EQ(StrForced(dir / "x.t", fits.size() + 1), fits); // just room for the terminator

  std::string small = dir / "x.t";
  std::vector<char> tight(small.begin(), small.end());
  tight.push_back('\0');
  EXPECT_THROW(StrForcedToBeNewFile(tight.data(), tight.size()), EInvalidOperation);
  EXPECT_EQ(std::string(tight.data()), small);
}

class Tree : public ::testing::Test {
protected:
  void SetUp() override {
    for (const char *file : {"A/b/x.txt", ".hidden/y", "c/D/z", "file.txt"})
      dir.WriteFile(file, "");
    fs::create_directory_symlink(dir / "A", dir / "link");
  }
  TempDir dir;
};

TEST_F(Tree, ListOfSubFolders) {
  std::unique_ptr<TStringList> flat(ListOfSubFolders(dir.Path(), false));
  EXPECT_EQ(LinesOf(*flat), std::vector<std::string>{dir.Path()});
  int yields = 0;
  auto count = [&yields] { ++yields; };
  AYieldProcessProc = TYieldProcessProc::Of(&count);
  std::unique_ptr<TStringList> deep(ListOfSubFolders(dir.Path(), true));
  AYieldProcessProc = nullptr;
  EXPECT_EQ(LinesOf(*deep), (std::vector<std::string>{dir.Path(), dir / "A", dir / "A/b", dir / "c",
                                                      dir / "c/D", dir / "link"}));
  // One per entry looked at ("." and ".." too: 7 at the top, 3 in each of the
  // four folders entered), and one more per folder listed.
  EXPECT_EQ(yields, 7 + 4 * 3 + 5);
}

TEST_F(Tree, CreateFileList) {
  TStringList *list = new TStringList;
  list->Add("stale");
  CreateFileList(dir / "*", list);
  EXPECT_EQ(LinesOf(*list),
            (std::vector<std::string>{dir / "A", dir / "c", dir / "file.txt", dir / "link"}));
  TStringList *none = nullptr;
  CreateFileList(dir / "*.none", none);
  EXPECT_EQ(none->Count(), 0);
  delete list;
  delete none;
}

TEST(WinGenOkFiles, OKToOverwriteMovesTheOldFileAside) {
  TempDir dir;
  dir.WriteFile("list.bak", "older");
  {
    ScriptedMessageBoxes boxes;
    EXPECT_TRUE(OKToOverwrite(dir / "list.lst"));
    EXPECT_TRUE(boxes.Boxes().empty());
    EXPECT_EQ(ReadFileBytes(dir / "list.bak"), "older");
  }
  dir.WriteFile("list.lst", "old");
  ScriptedMessageBoxes boxes({IDCANCEL, IDOK});
  EXPECT_FALSE(OKToOverwrite(dir / "list.lst"));
  EXPECT_EQ(ReadFileBytes(dir / "list.lst"), "old");
  EXPECT_TRUE(OKToOverwrite(dir / "list.lst"));
  EXPECT_FALSE(fs::exists(dir / "list.lst"));
  EXPECT_EQ(ReadFileBytes(dir / "list.bak"), "old");
  ASSERT_EQ(boxes.Boxes().size(), 2u);
  EXPECT_EQ(boxes.Boxes()[1].text, "Overwrite " + (dir / "list.lst") + "?");
  EXPECT_EQ(boxes.Boxes()[1].caption, "Confirmation");
  EXPECT_EQ(boxes.Boxes()[1].type, 0x2021u);
}

TEST(WinGenOkFiles, QueryIfNotDiskSpace) {
  TempDir dir;
  SetDriveRoot('Q', dir.Path());
  {
    ScriptedMessageBoxes boxes({IDCANCEL, IDOK, IDCANCEL});
    EXPECT_FALSE(QueryIfNotDiskSpace("", 1));
    EXPECT_TRUE(QueryIfNotDiskSpace("Q:/out.lst", 1));
    EXPECT_TRUE(QueryIfNotDiskSpace("//server/share/x", 0x7FFFFFFF));
    EXPECT_TRUE(boxes.Boxes().empty());

    EXPECT_FALSE(QueryIfNotDiskSpace("//server/share/x", 0x80000000LL));
    EXPECT_TRUE(QueryIfNotDiskSpace("q:/out.lst", int64_t(1) << 62));
    EXPECT_FALSE(QueryIfNotDiskSpace("x:/out.lst", 1)); // no drive X: nothing free
    ASSERT_EQ(boxes.Boxes().size(), 3u);
    EXPECT_EQ(boxes.Boxes()[0].text, "Only 2,097,151K space on /:\nProceed?");
    EXPECT_EQ(boxes.Boxes()[0].caption, "Confirmation");
    EXPECT_EQ(boxes.Boxes()[0].type, 0x2021u);
    // The free space itself moves as other programs write.
    const std::string &text = boxes.Boxes()[1].text;
    EXPECT_EQ(text.substr(0, 5), "Only ");
    EXPECT_NE(text.find(",", 5), std::string::npos); // thousands of kilobytes, grouped
    EXPECT_EQ(text.substr(text.find('K')), "K space on Q:\nProceed?");
    EXPECT_EQ(boxes.Boxes()[2].text, "Only 0K space on X:\nProceed?");
  }
  SetDriveRoot('Q', "");
}

TEST(WinGenOkFiles, SmallFileFunctions) {
  TempDir dir;
  dir.WriteFile("f.txt", "");
  EXPECT_EQ(NormalisedPath("C:/"), "C:/");
  EXPECT_EQ(NormalisedPath(dir / "x/../y/"), dir / "y");

  EXPECT_TRUE(FileNameHasWildCards("a*.txt"));
  EXPECT_TRUE(FileNameHasWildCards("a?.txt"));
  EXPECT_FALSE(FileNameHasWildCards("a[1].txt"));

  SetDriveRoot('Q', dir.Path());
  EXPECT_TRUE(ValidDrive('q'));
  EXPECT_TRUE(DriveBits & (1u << ('Q' - 'A')));
  EXPECT_TRUE(ValidDrive('C'));
  SetDriveRoot('Q', "");
  EXPECT_FALSE(ValidDrive('Q'));
  EXPECT_FALSE(ValidDrive('1'));

  EXPECT_TRUE(sIsADirectory(dir.Path()));
  EXPECT_FALSE(sIsADirectory(dir / "f.txt"));
  EXPECT_FALSE(sIsADirectory(dir / "none"));
  EXPECT_TRUE(StrFileExists((dir / "f.txt").c_str()));
  EXPECT_FALSE(StrFileExists(dir.Path().c_str()));
  EXPECT_FALSE(StrFileExists(nullptr));

  SetDriveType('Q', DRIVE_FIXED);
  SetDriveRoot('Q', dir.Path());
  EXPECT_TRUE(Fixed_Drive("Q:/"));
  SetDriveType('Q', DRIVE_REMOVABLE);
  EXPECT_FALSE(Fixed_Drive("Q:/"));
  SetDriveType('Q', 0);
  SetDriveRoot('Q', "");
  EXPECT_FALSE(Fixed_Drive("Q:/"));
}

} // namespace
