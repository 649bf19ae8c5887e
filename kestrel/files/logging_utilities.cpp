// Unit logging_utilities: the log file. Its start-up and finalisation forget
// the file name.
#include <kestrel/files/logging_utilities.h>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>

namespace kestrel {

bool keeping_log = false;

namespace {

std::string gLogFileName;

// One open-append-close through the host's file stream, which raises when a
// step fails. The file is opened with no sharing denied, as a text file is.
void AppendLine(const std::string &bytes) {
  const bool exists = FileExists(gLogFileName);
  TFileStream file(gLogFileName, exists ? fmOpenWrite | fmShareDenyNone : fmCreate);
  file.Seek(int64_t(0), TSeekOrigin::soEnd);
  file.WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
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
    AppendLine(AnsiStringFromWide(line) + "\r\n");
  } catch (...) { // no folder, no room, no memory: logging goes off, the tool goes on
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
