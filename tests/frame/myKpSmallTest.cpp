#include <gtest/gtest.h>

#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/myKpSmall.h>

#include "TestSupport.h"

using namespace kestrel;

TEST(myKpSmall, ControlStateStartsAsDocumented) {
  EXPECT_EQ(panic_mode, Tpanic_mode::no_panic);
  EXPECT_FALSE(yes_to_all);
  EXPECT_FALSE(no_to_all);
  EXPECT_EQ(CurrentBaseVersion, 4);
  EXPECT_EQ(sizeof(Tpanic_mode), 1u);
}

TEST(myKpSmall, MyStripBackSlashDropsOneDelimiter) {
  EXPECT_EQ(MyStripBackSlash(""), "");
  EXPECT_EQ(MyStripBackSlash("C:/"), "C:");
  EXPECT_EQ(MyStripBackSlash("/a/b//"), "/a/b/");
  EXPECT_EQ(MyStripBackSlash("/a/b"), "/a/b");
}

TEST(myKpSmall, MyYieldProcessCallsTheCallbackWhenSet) {
  MyYieldProcess(); // null: nothing happens
  int calls = 0;
  auto bump = [&calls] { ++calls; };
  AYieldProcessProc = TYieldProcessProc::Of(&bump);
  MyYieldProcess();
  MyYieldProcess();
  AYieldProcessProc = nullptr;
  MyYieldProcess();
  EXPECT_EQ(calls, 2);
}

TEST(myKpSmall, MyDirExistsLeavesTheCurrentFolderAlone) {
  test::TempDir tmp;
  std::string here = GetCurrentDir();
  EXPECT_TRUE(MyDirExists(tmp.Path()));
  EXPECT_EQ(GetCurrentDir(), here);
  EXPECT_FALSE(MyDirExists(tmp / "missing"));
  EXPECT_EQ(GetCurrentDir(), here);
  tmp.WriteFile("plain", "x");
  EXPECT_FALSE(MyDirExists(tmp / "plain"));
  EXPECT_EQ(GetCurrentDir(), here);
}

TEST(myKpSmall, MyForceCreateDirectoriesBuildsTheChain) {
  test::TempDir tmp;
  std::string deep = tmp / "a/b/c/";
  MyForceCreateDirectories(deep);
  EXPECT_TRUE(MyDirExists(tmp / "a"));
  EXPECT_TRUE(MyDirExists(tmp / "a/b/c"));
  MyForceCreateDirectories(tmp / "a/b"); // exists: left alone
  EXPECT_TRUE(MyDirExists(tmp / "a/b/c"));
  // One or two characters, or a drive, do nothing (and do not fail).
  MyForceCreateDirectories("C:/");
  MyForceCreateDirectories("zz");
  EXPECT_FALSE(MyDirExists("zz"));
  // A folder under a plain file cannot be made; nothing is reported.
  tmp.WriteFile("file", "x");
  MyForceCreateDirectories(tmp / "file/sub");
  EXPECT_FALSE(MyDirExists(tmp / "file/sub"));
}

TEST(myKpSmall, MyPMsgDlgIsTaskModalAndNamesTheProgram) {
  test::ScriptedMessageBoxes boxes({IDCANCEL, IDYES});
  EXPECT_EQ(MyPMsgDlg("Go on?", "", MB_OKCANCEL), IDCANCEL);
  EXPECT_EQ(MyPMsgDlg("Sure?", "Question", MB_YESNO), IDYES);
  ASSERT_EQ(boxes.Boxes().size(), 2u);
  EXPECT_EQ(boxes.Boxes()[0].type, 0x2001u);
  EXPECT_EQ(boxes.Boxes()[0].caption, ExtractFileName(ParamStr0()));
  EXPECT_EQ(boxes.Boxes()[0].caption, "test_frame");
  EXPECT_EQ(boxes.Boxes()[1].caption, "Question");
  EXPECT_EQ(boxes.Boxes()[1].text, "Sure?");
}

TEST(Platform, SafeAnswersWithoutATerminal) {
  EXPECT_EQ(SafeMessageBoxAnswer(MB_OK), IDOK);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_OKCANCEL | MB_TASKMODAL), IDCANCEL);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_YESNO), IDNO);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_YESNOCANCEL), IDCANCEL);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_ABORTRETRYIGNORE), IDABORT);
}

TEST(Platform, DriveLettersMapThroughTheTable) {
  EXPECT_EQ(NativePath("C:/tmp/x"), "/tmp/x");
  EXPECT_EQ(NativePath("c:"), "/");
  EXPECT_EQ(NativePath("Q:/x"), "Q:/x"); // no mapping: as it stands
  SetDriveRoot('Q', "/mnt/q");
  EXPECT_EQ(NativePath("Q:\\x"), "/mnt/q/x");
  SetDriveRoot('Q', "");
  EXPECT_EQ(NativePath("/plain"), "/plain");
}
