#include <gtest/gtest.h>

#include <kestrel/frame/platform/TempPath.h>

#include "support/TestSupport.h"

using namespace kestrel;

TEST(GetTempPathA, GivesTheFolderWithADelimiterOrTheRoomNeeded) {
  kestrel::test::TempDir dir;
  SetTempPath(dir.Path());
  char buf[300];
  uint32_t n = GetTempPathA(sizeof buf, buf);
  EXPECT_EQ(std::string(buf), dir.Path() + "/");
  EXPECT_EQ(n, dir.Path().size() + 1);

  char small[4] = {'x', 'x', 'x', 0};
  EXPECT_EQ(GetTempPathA(sizeof small, small), dir.Path().size() + 2); // with the 0
  EXPECT_STREQ(small, "xxx");                                          // nothing written
  EXPECT_EQ(GetTempPathA(n, buf), n + 1); // one short of the terminator

  SetTempPath("");
  ASSERT_LT(GetTempPathA(sizeof buf, buf), sizeof buf);
  EXPECT_EQ(std::string(buf).back(), '/');
}
