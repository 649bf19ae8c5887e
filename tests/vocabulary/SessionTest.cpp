// The screen's pixels per inch and the user's name, through the platform layer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <string>
#include <unistd.h>

#include <kestrel/frame/platform/Display.h>
#include <kestrel/frame/platform/UserInfo.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

TEST(Session, ScreenHas96PixelsPerInchUnlessTold) {
  EXPECT_EQ(ScreenPixelsPerInch(), 96);
  SetScreenPixelsPerInch(144);
  EXPECT_EQ(ScreenPixelsPerInch(), 144);
  SetScreenPixelsPerInch(0);
  EXPECT_EQ(ScreenPixelsPerInch(), 96);
}

TEST(Session, OnlyTheScreenHasAContext) {
  HDC screen = GetDC(nullptr);
  ASSERT_NE(screen, nullptr);
  EXPECT_EQ(GetDeviceCaps(screen, LOGPIXELSY), 96);
  EXPECT_EQ(GetDeviceCaps(screen, 12), 0); // an item it does not know
  EXPECT_EQ(GetDeviceCaps(nullptr, LOGPIXELSX), 0);
  int window;
  EXPECT_EQ(GetDC(&window), nullptr);
  EXPECT_EQ(ReleaseDC(nullptr, &window), 0);
  EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
}

// The process's user as the user database has it, or none.
std::optional<std::string> DatabaseUser() {
  const passwd *entry = ::getpwuid(::geteuid());
  if (!entry) return std::nullopt;
  return std::string(entry->pw_name);
}

// Sets an environment variable for the life of the object.
class EnvSetting {
public:
  EnvSetting(const char *name, const char *value) : name_(name) {
    if (const char *old = std::getenv(name)) saved_ = old;
    ::setenv(name, value, 1);
  }
  ~EnvSetting() {
    if (saved_)
      ::setenv(name_, saved_->c_str(), 1);
    else
      ::unsetenv(name_);
  }

private:
  const char *name_;
  std::optional<std::string> saved_;
};

TEST(Session, UserNameComesFromTheUserDatabaseNotTheEnvironment) {
  EnvSetting user("USER", "somebody-else"), logname("LOGNAME", "somebody-else");
  EXPECT_EQ(Registry_Current_User(), DatabaseUser().value_or("?????"));
}

TEST(Session, UserNameBufferContract) {
  if (!DatabaseUser()) GTEST_SKIP() << "the user database has no entry for this process";
  const std::string user = *DatabaseUser();
  const uint32_t needed = uint32_t(user.size() + 1);
  char buffer[256];
  uint32_t size = needed - 1;
  EXPECT_FALSE(GetUserNameA(buffer, &size));
  EXPECT_EQ(size, needed);
  size = needed;
  ASSERT_TRUE(GetUserNameA(buffer, &size));
  EXPECT_EQ(size, needed);
  EXPECT_EQ(std::string(buffer), user);
  EXPECT_FALSE(GetUserNameA(buffer, nullptr));
}

} // namespace
} // namespace kestrel
