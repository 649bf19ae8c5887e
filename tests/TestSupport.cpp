#include "TestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kestrel::test {

TempDir::TempDir() {
  std::string tmpl = (std::filesystem::temp_directory_path() / "kestrel-test-XXXXXX").string();
  if (!::mkdtemp(tmpl.data()))
    throw std::runtime_error("cannot create a temporary folder");
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

ScriptedMessageBoxes::ScriptedMessageBoxes(std::deque<int32_t> answers)
    : answers_(std::move(answers)) {
  previous_ = SetMessageBoxHandler(
      [this](const std::string &text, const std::string &caption, uint32_t type) {
        boxes_.push_back({text, caption, type});
        if (answers_.empty())
          return IDOK;
        int32_t a = answers_.front();
        answers_.pop_front();
        return a;
      });
}

ScriptedMessageBoxes::~ScriptedMessageBoxes() { SetMessageBoxHandler(previous_); }

std::string SharedDataDir() {
  std::filesystem::path p = KESTREL_SHARED_DIR;
  return std::filesystem::exists(p / "ucd-3.0.0" / "UnicodeData.txt") ? p.string() : "";
}

} // namespace kestrel::test
