#include "TestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/search/SearchEngine.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel::test {

TempDir::TempDir() {
  std::string tmpl = (std::filesystem::temp_directory_path() / "kestrel-test-XXXXXX").string();
  if (!::mkdtemp(tmpl.data())) throw std::runtime_error("cannot create a temporary folder");
  path_ = tmpl;
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

void TempDir::WriteFile(const std::string &name, const std::string &bytes) const {
  std::filesystem::path p = std::filesystem::path(path_) / name;
  std::filesystem::create_directories(p.parent_path());
  std::ofstream out(p, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadFileBytes(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string BytesOf(TMemoryStream &stream) {
  return std::string(static_cast<const char *>(stream.Memory()),
                     static_cast<size_t>(stream.Size()));
}

std::unique_ptr<TMemoryStream> StreamOf(const std::string &bytes) {
  auto s = std::make_unique<TMemoryStream>();
  if (!bytes.empty()) s->WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  s->SetPosition(0);
  return s;
}

size_t EntriesIn(const std::string &folder) {
  return size_t(std::distance(std::filesystem::directory_iterator(folder),
                              std::filesystem::directory_iterator()));
}

std::vector<std::string> LinesOf(const TStrings &list) {
  std::vector<std::string> out;
  for (int32_t i = 0; i < list.Count(); ++i)
    out.push_back(list[i]);
  return out;
}

std::string Show(const std::u16string &text) {
  std::string out;
  for (char16_t u : text) {
    if (u >= 0x20 && u < 0x7F) {
      out += static_cast<char>(u);
    } else {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\u%04X", unsigned(u));
      out += buf;
    }
  }
  return out;
}

Matches ResultsOf(TSearchEngine &engine) {
  Matches out;
  for (uint32_t i = 0; i < engine.GetCount(); ++i) {
    int32_t start = -1, stop = -1;
    engine.GetResult(i, start, stop);
    out.emplace_back(start, stop);
  }
  return out;
}

ScriptedMessageBoxes::ScriptedMessageBoxes(std::deque<int32_t> answers)
    : answers_(std::move(answers)) {
  previous_ = SetMessageBoxHandler(
      [this](const std::string &text, const std::string &caption, uint32_t type) {
        boxes_.push_back({text, caption, type});
        if (answers_.empty()) return IDOK;
        int32_t a = answers_.front();
        answers_.pop_front();
        return a;
      });
}

ScriptedMessageBoxes::~ScriptedMessageBoxes() {
  SetMessageBoxHandler(previous_);
}

ToolGuard::ToolGuard(tool_type now) : saved_(current_tool_var) {
  current_tool_var = now;
}
ToolGuard::~ToolGuard() {
  current_tool_var = saved_;
}

std::string SharedDataDir() {
  std::filesystem::path p = KESTREL_SHARED_DIR;
  return std::filesystem::exists(p / "ucd-3.0.0" / "UnicodeData.txt") ? p.string() : "";
}

std::string SourceDir() {
  return KESTREL_SOURCE_DIR;
}

} // namespace kestrel::test
