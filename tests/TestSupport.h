// Helpers shared by the test programs.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel::test {

// A fresh folder below the system's temporary folder, removed with all it
// holds when the object goes.
class TempDir {
public:
  TempDir();
  ~TempDir();
  const std::string &Path() const { return path_; }
  // Full name of an entry inside the folder.
  std::string operator/(const std::string &name) const { return path_ + "/" + name; }
  void WriteFile(const std::string &name, const std::string &bytes) const;

private:
  std::string path_;
};

std::string ReadFileBytes(const std::string &path);

// Installs a message-box handler that records every box and answers from a
// script (IDOK when the script runs out); the previous handler comes back
// when the object goes.
class ScriptedMessageBoxes {
public:
  explicit ScriptedMessageBoxes(std::deque<int32_t> answers = {});
  ~ScriptedMessageBoxes();
  struct Box {
    std::string text, caption;
    uint32_t type;
  };
  const std::vector<Box> &Boxes() const { return boxes_; }

private:
  std::deque<int32_t> answers_;
  std::vector<Box> boxes_;
  MessageBoxHandler previous_;
};

// The folder of the shared input data, or empty when it is not beside the
// repository (tests that need it skip then).
std::string SharedDataDir();

} // namespace kestrel::test
