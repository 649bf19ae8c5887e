// The shared control state of the package and its small helpers.
#include <gtest/gtest.h>

#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/myKpSmall.h>

#include "support/TestSupport.h"

using namespace kestrel;

TEST(myKpSmall, MyStripBackSlashDropsOneDelimiter) {
  EXPECT_EQ(MyStripBackSlash(""), "");
  EXPECT_EQ(MyStripBackSlash("/a/b//"), "/a/b/");
  EXPECT_EQ(MyStripBackSlash("/a/b"), "/a/b");
}

TEST(myKpSmall, MyYieldProcessCallsTheCallbackWhenSet) {
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
  tmp.WriteFile("plain", "x");
  EXPECT_TRUE(MyDirExists(tmp.Path()));
  EXPECT_FALSE(MyDirExists(tmp / "missing"));
  EXPECT_FALSE(MyDirExists(tmp / "plain"));
  EXPECT_EQ(GetCurrentDir(), here);
}

TEST(myKpSmall, MyForceCreateDirectoriesBuildsTheChain) {
  test::TempDir tmp;
  MyForceCreateDirectories(tmp / "a/b/c/");
  EXPECT_TRUE(MyDirExists(tmp / "a/b/c"));
  MyForceCreateDirectories("zz"); // one or two characters (a drive) do nothing
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
  EXPECT_EQ(boxes.Boxes()[0].caption, "test_frame");
  EXPECT_EQ(boxes.Boxes()[1].caption, "Question");
  EXPECT_EQ(boxes.Boxes()[1].text, "Sure?");
}
