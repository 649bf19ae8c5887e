// The host's file-name, number, text and error functions.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <kestrel/frame/host/Host.h>

namespace kestrel {
namespace {

TEST(SysUtils, PathParts) {
  struct Row {
    std::string (*fn)(std::string_view);
    const char *in, *out;
  } rows[] = {{ExtractFilePath, "/a/b/c.txt", "/a/b/"},
              {ExtractFilePath, "c.txt", ""},
              {ExtractFilePath, "C:x", "C:"},
              {ExtractFileName, "/a/b/c.txt", "c.txt"},
              {ExtractFileExt, "/a.d/b", ""},
              {ExtractFileExt, "b.tar.gz", ".gz"},
              {ExtractFileDir, "/a/b/c", "/a/b"},
              {ExtractFileDir, "/c", "/"},
              {IncludeTrailingPathDelimiter, "/a", "/a/"},
              {IncludeTrailingPathDelimiter, "/a/", "/a/"}};
  for (const Row &r : rows)
    EXPECT_EQ(r.fn(r.in), r.out) << r.in;
  EXPECT_EQ(ChangeFileExt("/x/b.txt", ".lst"), "/x/b.lst");
}

TEST(SysUtils, NumbersAndText) {
  EXPECT_EQ(StrToInt(" 42 "), 42);
  EXPECT_EQ(StrToInt("-2147483648"), INT32_MIN);
  EXPECT_EQ(StrToInt("$FF"), 255);
  for (const char *bad : {"12a", "", "2147483648"})
    EXPECT_THROW(StrToInt(bad), EConvertError) << bad;
  EXPECT_EQ(StrToIntDef("x", -1), -1);
  EXPECT_EQ(Format("%s=%d", "a", 5), "a=5");
  EXPECT_TRUE(SameText("Hello", "hELLO"));
  EXPECT_LT(CompareText("abc", "ABD"), 0);
  EXPECT_EQ(Trim("  a b \t"), "a b");
}

TEST(SysUtils, ChDirReportsThroughIOResultWithoutRaising) {
  std::string here = GetCurrentDir();
  ChDir("/no/such/folder/here");
  EXPECT_NE(IOResult(), 0);
  EXPECT_EQ(IOResult(), 0); // cleared by the read
  EXPECT_EQ(GetCurrentDir(), here);
}

TEST(SysUtils, RaiseLastOSErrorCarriesTheSystemCodeAndText) {
  try {
    RaiseLastOSError(2);
    FAIL();
  } catch (const EOSError &e) {
    EXPECT_EQ(e.ErrorCode, 2);
    EXPECT_NE(e.Message().find("Code: 2."), std::string::npos) << e.Message();
    EXPECT_NE(e.Message().find(std::strerror(2)), std::string::npos) << e.Message();
  }
  EXPECT_THROW(RaiseLastOSError(0), EOSError);
  errno = 13;
  EXPECT_EQ(GetLastOSError(), 13);
}

} // namespace
} // namespace kestrel
