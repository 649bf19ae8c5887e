// The log file: a log of any name and lines of any units. While logging stays
// on, the file holds exactly the lines written, each ended by CR LF; when a
// line cannot be written, logging goes off and nothing else breaks. Nothing
// is ever written outside the folder the name starts in (names that climb out
// with ".." are not tried).
#include "FuzzSupport.h"

#include <dirent.h>
#include <filesystem>
#include <set>

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

std::set<std::string> Entries(const std::string &folder) {
  std::set<std::string> names;
  if (DIR *d = ::opendir(folder.c_str())) {
    while (dirent *e = ::readdir(d))
      if (std::string_view(e->d_name) != "." && std::string_view(e->d_name) != "..")
        names.insert(e->d_name);
    ::closedir(d);
  }
  return names;
}

bool Climbs(const std::string &name) {
  size_t start = 0;
  for (;;) {
    const size_t end = name.find('/', start);
    if (name.compare(start, end == std::string::npos ? std::string::npos : end - start, "..") == 0)
      return true;
    if (end == std::string::npos) return false;
    start = end + 1;
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const bool clearAtEnd = in.Byte() & 1;
  const std::string name = in.Part();
  if (Climbs(name)) return 0;
  // The log's folder sits two levels down: a write outside it would show.
  const std::string top = PrivateFolder(), middle = top + "/m", inside = middle + "/log";
  std::filesystem::remove_all(inside);
  std::filesystem::create_directories(inside + "/sub");
  const std::string path = inside + "/" + name;

  SetLogFilename(path);
  keeping_log = true;
  std::string expected;
  while (in.Left() > 0) {
    const std::u16string line = Units(in.Part());
    AddToLogFile(line);
    expected += AnsiStringFromWide(line) + "\r\n";
  }
  if (clearAtEnd) {
    ClearLogFile();
    expected.clear();
  }
  const bool stillOn = keeping_log;
  keeping_log = false;
  SetLogFilename("");

  if (Entries(top) != std::set<std::string>{"m"} || Entries(middle) != std::set<std::string>{"log"})
    Finding("the log wrote outside its folder");
  // A name with a NUL names the file up to it, as the system reads it.
  const std::string written = FileBytes(path.c_str());
  if (stillOn && !clearAtEnd && written != expected)
    Finding("the log does not hold the lines written");
  if (stillOn && clearAtEnd && !written.empty() && written.rfind("*******\r\nLOG STARTED at ", 0))
    Finding("a cleared log does not start a new section");
  return 0;
}
