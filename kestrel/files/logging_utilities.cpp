// Unit logging_utilities: the log file. Its start-up and finalisation forget
// the file name.
#include <kestrel/files/logging_utilities.h>

#include <cstdio>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

bool keeping_log = false;

namespace {

std::string gLogFileName;

// One open-append-flush-close; false when any step fails.
bool AppendLine(const std::string &bytes) {
  std::FILE *f = std::fopen(NativePath(gLogFileName).c_str(), "ab");
  if (!f) return false;
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  ok = std::fflush(f) == 0 && ok;
  return std::fclose(f) == 0 && ok;
}

void ForgetLogFile() {
  gLogFileName.clear();
}

} // namespace

void SetLogFilename(const std::string &fileName) {
  gLogFileName = fileName;
}

void AddToLogFile(const std::u16string &line) {
  if (!keeping_log || gLogFileName.empty()) return;
  try {
    if (!AppendLine(AnsiStringFromWide(line) + "\r\n")) keeping_log = false;
  } catch (...) { // out of memory, say: logging goes off, the tool goes on
    keeping_log = false;
  }
}

void StartNewLogSection() {
  AddToLogFile(u"*******");
  const std::string started = "LOG STARTED at " + DateTimeToStr(Now());
  AddToLogFile(std::u16string(started.begin(), started.end()));
}

void ClearLogFile() {
  if (gLogFileName.empty()) return;
  try {
    if (!FileExists(gLogFileName)) return;
    DeleteFile(gLogFileName);
    StartNewLogSection();
  } catch (...) {
  }
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(logging_utilities, ::kestrel::ForgetLogFile, ::kestrel::ForgetLogFile)
