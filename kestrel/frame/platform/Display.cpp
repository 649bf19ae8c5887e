#include <kestrel/frame/platform/Display.h>

#include <atomic>

namespace kestrel {

namespace {

// The screen's context is the address of this object; it has no state.
char gScreenContext;
std::atomic<int32_t> gScreenPixelsPerInch{kDefaultScreenPixelsPerInch};

} // namespace

HDC GetDC(HWND window) {
  return window ? nullptr : &gScreenContext;
}

int32_t GetDeviceCaps(HDC dc, int32_t index) {
  if (dc != &gScreenContext) return 0;
  if (index == LOGPIXELSX || index == LOGPIXELSY)
    return gScreenPixelsPerInch.load(std::memory_order_relaxed);
  return 0;
}

int32_t ReleaseDC(HWND window, HDC dc) {
  return dc == &gScreenContext ? 1 : 0;
}

void SetScreenPixelsPerInch(int32_t pixelsPerInch) {
  gScreenPixelsPerInch.store(pixelsPerInch > 0 ? pixelsPerInch : kDefaultScreenPixelsPerInch,
                             std::memory_order_relaxed);
}

} // namespace kestrel
