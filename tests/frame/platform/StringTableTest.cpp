// The module's string table: every unit's texts under identifiers of their own.
#include <gtest/gtest.h>

#include <set>

#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>

using namespace kestrel;

TEST(StringTable, EveryIdentifierHasOneText) {
  EXPECT_EQ(DuplicateStringIds(), "");
  EXPECT_EQ(LoadResString(65528), "YES");
  EXPECT_EQ(LoadResString(65529), "NO");
  std::set<std::string> texts;
  for (uint16_t id = 65520; id <= 65531; ++id) {
    std::string text;
    ASSERT_TRUE(FindStringResource(KestrelModuleHandle(), id, text)) << id;
    texts.insert(text);
  }
  EXPECT_EQ(texts.size(), 12u);
  EXPECT_EQ(LoadResString(1), "");
  std::string text;
  EXPECT_FALSE(FindStringResource(nullptr, 65528, text));
}
