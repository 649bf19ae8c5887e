// The system facts of WinGenOk's start-up and its number, date and system functions.
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <sys/utsname.h>
#include <unistd.h>

#include <kestrel/files/WinGenOk.h>
#include <kestrel/files/WinGenOkInternal.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Errors.h>
#include <kestrel/frame/platform/Nls.h>

using namespace kestrel;

namespace {

TEST(WinGenOkSystem, StartUpFacts) {
  EXPECT_EQ(TrueBoolStrs, (std::vector<std::string>{"Yes", "True"})); // set by the start-up
  EXPECT_EQ(FalseBoolStrs, (std::vector<std::string>{"No", "False"}));
  struct utsname u;
  ASSERT_EQ(::uname(&u), 0);
  unsigned major = 0, minor = 0;
  std::sscanf(u.release, "%u.%u", &major, &minor);
  EXPECT_EQ(Windows_Version.dwOSVersionInfoSize, 148u);
  EXPECT_EQ(Windows_Version.dwMajorVersion, major);
  EXPECT_EQ(Windows_Version.dwMinorVersion, minor);
  EXPECT_EQ(Windows_Version.dwPlatformId, 2u);
  EXPECT_EQ(std::string(Windows_Version.szCSDVersion).rfind(u.sysname, 0), 0u);
  EXPECT_EQ(running_XP_or_better, major > 5 || (major == 5 && minor >= 1));

  EXPECT_EQ(systeminfo.dwPageSize, static_cast<uint32_t>(::sysconf(_SC_PAGESIZE)));
  EXPECT_EQ(systeminfo.dwNumberOfProcessors,
            static_cast<uint32_t>(::sysconf(_SC_NPROCESSORS_ONLN)));
  EXPECT_NE(systeminfo.dwActiveProcessorMask, 0u);
  EXPECT_LT(systeminfo.lpMinimumApplicationAddress, systeminfo.lpMaximumApplicationAddress);
  if (std::string(u.machine) == "x86_64") {
    EXPECT_EQ(systeminfo.wProcessorArchitecture, PROCESSOR_ARCHITECTURE_AMD64);
    EXPECT_EQ(systeminfo.dwProcessorType, PROCESSOR_AMD_X8664);
    EXPECT_GT(systeminfo.wProcessorLevel, 0);
  }

  EXPECT_EQ(Work_Area.left, 0);
  EXPECT_EQ(Work_Area.top, 0);
  EXPECT_GT(Work_Area.right, 0);
  EXPECT_GT(Work_Area.bottom, 0);

  struct Version {
    uint32_t major, minor;
    bool xp;
  } versions[] = {{4, 9, false}, {5, 0, false}, {5, 1, true}, {5, 2, true}, {6, 0, true}};
  for (const Version &v : versions) {
    OSVERSIONINFOA info{};
    info.dwMajorVersion = v.major;
    info.dwMinorVersion = v.minor;
    EXPECT_EQ(IsXPOrBetter(info), v.xp) << v.major << "." << v.minor;
  }

  OSVERSIONINFOA wrong{};
  wrong.dwOSVersionInfoSize = 156;
  EXPECT_FALSE(GetVersionExA(&wrong));
}

TEST(WinGenOkSystem, NumbersAndDates) {
  EXPECT_EQ(Max(-3, 2), 2);
  EXPECT_EQ(Max(-3, -7), -3);
  EXPECT_EQ(Min(-3, 2), -3);

  EXPECT_EQ(TodaysTimeInSeconds(EncodeDateTime(2004, 3, 12, 12, 0, 1, 0)), 43201);
  EXPECT_EQ(TodaysTimeInSeconds(EncodeDateTime(2004, 3, 12, 23, 59, 59, 600)), 86400);
  EXPECT_EQ(TodaysTimeInSeconds(1.25), 21600);
  EXPECT_EQ(TodaysTimeInSeconds(7.0), 0);
  EXPECT_EQ(TodayAsLongint(), static_cast<int32_t>(std::trunc(Now())));
}

TEST(WinGenOkSystem, SystemQuestions) {
  EXPECT_EQ(LCIDToCodePage(0x0409), 1252);
  EXPECT_EQ(LCIDToCodePage(0x0419), 1251);
  EXPECT_EQ(LCIDToCodePage(0x0439), 0); // Hindi: Unicode only, and 0 is a number
  EXPECT_EQ(LCIDToCodePage(0x7777), static_cast<int32_t>(GetACP()));
  EXPECT_EQ(PixelsPerInch(), 96);

  EXPECT_EQ(MyColourToRGB(0x00123456), 0x00123456);
  EXPECT_EQ(MyColourToRGB(int32_t(0x8000000F)), 0x00C8D0D4); // the button face
  EXPECT_EQ(MyColourToRGB(int32_t(0x8000FF05)), 0x00FFFFFF); // the low byte alone: window
  EXPECT_EQ(MyColourToRGB(-1), 0);                           // 0xFF: no such colour

  SetLastError(ENOENT);
  EXPECT_EQ(GetLastErrorString(), std::strerror(ENOENT));
  char text[8];
  EXPECT_EQ(FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ENOENT, 0, text, 8, nullptr), 7u);
  EXPECT_EQ(std::string(text), std::string(std::strerror(ENOENT)).substr(0, 7));
  EXPECT_EQ(FormatMessageA(0, nullptr, ENOENT, 0, text, 8, nullptr), 0u);
}

} // namespace
