// Every test program brings the library up once, as a tool would.
#include <gtest/gtest.h>

#include <kestrel/frame/Frame.h>

namespace {
class LibraryEnvironment : public ::testing::Environment {
public:
  void SetUp() override { kestrel::Initialize(); }
  void TearDown() override { kestrel::Finalize(); }
};
} // namespace

int main(int argc, char **argv) {
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);
  return RUN_ALL_TESTS();
}
