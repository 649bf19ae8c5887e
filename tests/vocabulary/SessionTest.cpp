// The screen's pixels per inch and the user's name, through the platform layer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <string>
#include <sys/wait.h>
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
  int window; // this layer owns no windows: only the screen has a context
  EXPECT_EQ(GetDC(&window), nullptr);
  EXPECT_EQ(GetDeviceCaps(nullptr, LOGPIXELSX), 0);
  EXPECT_EQ(GetDeviceCaps(GetDC(nullptr), 12), 0); // an item it does not know
}

// The process's user as the user database has it, or none.
std::optional<std::string> DatabaseUser() {
  const passwd *entry = ::getpwuid(::geteuid());
  if (!entry) return std::nullopt;
  return std::string(entry->pw_name);
}

TEST(Session, UserNameComesFromTheUserDatabaseNotTheEnvironment) {
  const std::string saved = std::getenv("USER") ? std::getenv("USER") : "";
  ::setenv("USER", "somebody-else", 1);
  const std::string name = Registry_Current_User();
  saved.empty() ? ::unsetenv("USER") : ::setenv("USER", saved.c_str(), 1);
  EXPECT_EQ(name, DatabaseUser().value_or("?????"));
}

TEST(Session, UserWithoutAnEntryInTheDatabaseIsUnknown) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to run as root to take an id with no user";
  uid_t stranger = 54321;
  while (::getpwuid(stranger))
    ++stranger;
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (::seteuid(stranger) != 0) ::_exit(2);
    ::_exit(Registry_Current_User() == "?????" ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
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
