#include <kestrel/frame/platform/Display.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

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

namespace {

struct ScreenSize {
  int32_t width = 1024, height = 768;
};

bool ReadPair(const std::string &path, const char *format, ScreenSize &size) {
  std::ifstream in(path);
  std::string line;
  int w = 0, h = 0;
  if (!std::getline(in, line) || std::sscanf(line.c_str(), format, &w, &h) != 2 || w <= 0 || h <= 0)
    return false;
  size = {w, h};
  return true;
}

ScreenSize FindScreen() {
  ScreenSize size;
  std::error_code ec;
  for (const auto &output : std::filesystem::directory_iterator("/sys/class/drm", ec)) {
    std::ifstream status(output.path() / "status");
    std::string state;
    if (status >> state && state == "connected" && ReadPair(output.path() / "modes", "%dx%d", size))
      return size;
  }
  ReadPair("/sys/class/graphics/fb0/virtual_size", "%d,%d", size);
  return size;
}

constexpr uint32_t Rgb(uint32_t r, uint32_t g, uint32_t b) {
  return r | g << 8 | b << 16;
}

constexpr uint32_t kSysColors[31] = {
    Rgb(212, 208, 200), // scroll bar
    Rgb(58, 110, 165),  // desktop
    Rgb(10, 36, 106),   // active caption
    Rgb(128, 128, 128), // inactive caption
    Rgb(212, 208, 200), // menu
    Rgb(255, 255, 255), // window
    Rgb(0, 0, 0),       // window frame
    Rgb(0, 0, 0),       // menu text
    Rgb(0, 0, 0),       // window text
    Rgb(255, 255, 255), // caption text
    Rgb(212, 208, 200), // active border
    Rgb(212, 208, 200), // inactive border
    Rgb(128, 128, 128), // application work space
    Rgb(10, 36, 106),   // highlight
    Rgb(255, 255, 255), // highlight text
    Rgb(212, 208, 200), // button face
    Rgb(128, 128, 128), // button shadow
    Rgb(128, 128, 128), // grey text
    Rgb(0, 0, 0),       // button text
    Rgb(212, 208, 200), // inactive caption text
    Rgb(255, 255, 255), // button highlight
    Rgb(64, 64, 64),    // 3-D dark shadow
    Rgb(212, 208, 200), // 3-D light
    Rgb(0, 0, 0),       // tool tip text
    Rgb(255, 255, 225), // tool tip background
    Rgb(181, 181, 181), // alternate button face
    Rgb(0, 0, 128),     // hot-tracked item
    Rgb(166, 202, 240), // active caption gradient
    Rgb(192, 192, 192), // inactive caption gradient
    Rgb(49, 106, 197),  // menu highlight
    Rgb(236, 233, 216), // menu bar
};

} // namespace

bool SystemParametersInfoA(uint32_t action, uint32_t, void *param, uint32_t) {
  if (action != SPI_GETWORKAREA || param == nullptr) {
    errno = EINVAL;
    return false;
  }
  static const ScreenSize screen = FindScreen();
  *static_cast<RECT *>(param) = {0, 0, screen.width, screen.height};
  return true;
}

uint32_t GetSysColor(int32_t index) {
  return index >= 0 && index < 31 ? kSysColors[index] : 0;
}

} // namespace kestrel
