// The screen's device context: the one display device the library asks about.
//
// The library reads no environment, so it cannot find the user's display
// session (which Linux names only there); the screen answers the logical
// pixels per inch of a display at 100% scale, 96, unless the tool that knows
// its display says otherwise.
#pragma once

#include <cstdint>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

using HDC = void *;

// Items of GetDeviceCaps: logical pixels per inch, across and down.
inline constexpr int32_t LOGPIXELSX = 88;
inline constexpr int32_t LOGPIXELSY = 90;
// The logical pixels per inch of a display at 100% scale.
inline constexpr int32_t kDefaultScreenPixelsPerInch = 96;

// The screen's device context for a null window. This layer owns no windows:
// any other window gives null.
HDC GetDC(HWND window);
// An item of a device context; 0 for an item it does not know or a null context.
int32_t GetDeviceCaps(HDC dc, int32_t index);
// 1 when dc is the screen's context, else 0.
int32_t ReleaseDC(HWND window, HDC dc);

// Sets the logical pixels per inch that the screen reports; a value below 1
// goes back to 96.
void SetScreenPixelsPerInch(int32_t pixelsPerInch);

} // namespace kestrel
