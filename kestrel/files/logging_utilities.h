// Unit logging_utilities: one optional plain-text log per process. Each line
// is written by its own open-append-close, in the system code page, ended by
// CR LF. A failure to write turns logging off for the rest of the run.
#pragma once

#include <string>

namespace kestrel {

// Logging is on; a tool sets it, and a failed write clears it.
extern bool keeping_log;

void SetLogFilename(const std::string &fileName);
// Appends a line, creating the file when it does not exist. Nothing happens
// with logging off or no file name.
void AddToLogFile(const std::u16string &line);
// "*******" and "LOG STARTED at " with the date and time.
void StartNewLogSection();
// Deletes the log file and, when there was one, starts a new section in a new
// file (which only happens with logging on). Failures are dropped.
void ClearLogFile();

} // namespace kestrel
