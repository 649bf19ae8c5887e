// The platform layer's table of drive letters.
#include <gtest/gtest.h>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {
namespace {

TEST(Drives, DriveLettersMapThroughTheTable) {
  EXPECT_EQ(NativePath("C:/tmp/x"), "/tmp/x");
  EXPECT_EQ(NativePath("c:"), "/");
  EXPECT_EQ(NativePath("Q:/x"), "Q:/x"); // no mapping: as it stands
  SetDriveRoot('Q', "/mnt/q");
  EXPECT_EQ(NativePath("Q:\\x"), "/mnt/q/x");
  EXPECT_EQ(DriveRoot('q'), "/mnt/q");
  SetDriveRoot('Q', "");
  EXPECT_EQ(NativePath("/plain"), "/plain");
}

} // namespace
} // namespace kestrel
