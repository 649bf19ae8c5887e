// WinGenOk: the system facts gathered at start-up, and the small number, date
// and system functions.
#include <kestrel/files/WinGenOk.h>

#include <cmath>

#include <kestrel/files/WinGenOkInternal.h>
#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/platform/Display.h>
#include <kestrel/frame/platform/Errors.h>
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/SystemInfo.h>

namespace kestrel {

OSVERSIONINFOA Windows_Version{};
SYSTEM_INFO systeminfo{};
bool running_XP_or_better = false;
RECT Work_Area{};

namespace {

constexpr LCTYPE kDefaultAnsiCodePage = 0x1004;

void StartWinGenOk() {
  TrueBoolStrs = {"Yes", "True"};
  FalseBoolStrs = {"No", "False"};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &Work_Area, 0);
  Windows_Version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOA);
  GetVersionExA(&Windows_Version);
  running_XP_or_better = IsXPOrBetter(Windows_Version);
  GetSystemInfo(&systeminfo);
}

} // namespace

int32_t Max(int32_t A, int32_t B) {
  return A > B ? A : B;
}
int32_t Min(int32_t A, int32_t B) {
  return A < B ? A : B;
}

int32_t TodayAsLongint() {
  return static_cast<int32_t>(std::trunc(Date()));
}

int32_t TodaysTimeInSeconds(TDateTime DateTime) {
  double fraction = DateTime - std::trunc(DateTime);
  return static_cast<int32_t>(std::nearbyint(fraction * 86400)); // to even, as the host rounds
}

int32_t LCIDToCodePage(uint32_t Locale) {
  char text[16] = {};
  int32_t value = 0;
  if (GetLocaleInfoA(Locale, kDefaultAnsiCodePage, text, sizeof text) > 0 &&
      TryStrToInt(text, value))
    return value;
  return static_cast<int32_t>(GetACP());
}

int32_t PixelsPerInch() {
  HDC dc = GetDC(nullptr);
  int32_t ppi = GetDeviceCaps(dc, LOGPIXELSY);
  ReleaseDC(nullptr, dc);
  return ppi;
}

int32_t MyColourToRGB(int32_t Colour) {
  if (Colour >= 0) return Colour;
  return static_cast<int32_t>(GetSysColor(Colour & 0xFF));
}

std::string GetLastErrorString() {
  uint32_t error = GetLastError();
  char text[256];
  uint32_t n =
      FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error, 0, text, sizeof text, nullptr);
  return std::string(text, n);
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(WinGenOk, ::kestrel::StartWinGenOk, ::kestrel::NoUnitWork)
