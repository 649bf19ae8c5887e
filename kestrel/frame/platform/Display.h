// The screen under the Windows names. The library draws nothing and may run
// where there is no display, so it asks the kernel's graphics devices for
// the screen's size (the first connected DRM output's first mode, else the
// frame buffer's) and otherwise answers 1024 x 768. The work area is the
// whole screen: Linux has no one task bar to leave out. The logical
// resolution is the conventional 96 pixels per inch, and the system colours
// are those of the classic Windows scheme.
#pragma once

#include <cstdint>

namespace kestrel {

struct RECT {
  int32_t left, top, right, bottom;
};
static_assert(sizeof(RECT) == 16);

using HDC = void *;

inline constexpr uint32_t SPI_GETWORKAREA = 0x0030;

inline constexpr int32_t HORZRES = 8;
inline constexpr int32_t VERTRES = 10;
inline constexpr int32_t BITSPIXEL = 12;
inline constexpr int32_t PLANES = 14;
inline constexpr int32_t LOGPIXELSX = 88;
inline constexpr int32_t LOGPIXELSY = 90;

// SPI_GETWORKAREA fills the RECT that param points to; other actions fail.
bool SystemParametersInfoA(uint32_t action, uint32_t uiParam, void *param, uint32_t winIni);

// The screen's device context (for a null window; others have none).
HDC GetDC(void *window);
int32_t ReleaseDC(void *window, HDC dc);
// HORZRES, VERTRES, BITSPIXEL (32), PLANES (1), LOGPIXELSX and LOGPIXELSY
// (96); 0 for other items.
int32_t GetDeviceCaps(HDC dc, int32_t index);

// A system colour, 0x00BBGGRR; 0 for an index outside 0 to 30.
uint32_t GetSysColor(int32_t index);

} // namespace kestrel
