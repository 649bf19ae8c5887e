#include <kestrel/frame/myKpSmall.h>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

Tpanic_mode panic_mode = Tpanic_mode::no_panic;
bool yes_to_all = false;
bool no_to_all = false;
TYieldProcessProc AYieldProcessProc;
int32_t CurrentBaseVersion = 4;

bool MyDirExists(const std::string &folder) {
  std::string saved = GetCurrentDir();
  ChDir(folder);
  bool result = IOResult() == 0;
  ChDir(saved);
  IOResult();
  return result;
}

std::string MyStripBackSlash(const std::string &path) {
  if (!path.empty() && path.back() == PathDelim)
    return path.substr(0, path.size() - 1);
  return path;
}

void MyForceCreateDirectories(const std::string &folder) {
  std::string dir = MyStripBackSlash(folder);
  if (dir.size() < 3) // a drive ("C:") or a root: nothing to create
    return;
  if (MyDirExists(dir))
    return;
  MyForceCreateDirectories(ExtractFilePath(dir));
  MkDir(dir);
  IOResult();
}

int32_t MyPMsgDlg(const std::string &message, const std::string &caption, uint16_t flags) {
  std::string title = caption.empty() ? ExtractFileName(ParamStr0()) : caption;
  return MessageBoxA(nullptr, message.c_str(), title.c_str(), uint32_t(flags) | MB_TASKMODAL);
}

namespace {
void StartMyKpSmall() { panic_mode = Tpanic_mode::no_panic; }
} // namespace

} // namespace kestrel

KESTREL_DEFINE_UNIT(myKpSmall, ::kestrel::StartMyKpSmall, ::kestrel::NoUnitWork)
