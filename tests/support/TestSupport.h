// Helpers shared by every test program: temporary folders, file bytes, memory
// streams, scripted message boxes, the results of a search engine.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {
class TMemoryStream;
class TStrings;
class TSearchEngine;
enum class tool_type : uint8_t;
} // namespace kestrel

namespace kestrel::test {

// A fresh folder below the system's temporary folder, removed with all it
// holds when the object goes.
class TempDir {
public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir &) = delete;
  TempDir &operator=(const TempDir &) = delete;
  const std::string &Path() const { return path_; }
  // Full name of an entry inside the folder.
  std::string operator/(const std::string &name) const { return path_ + "/" + name; }
  // Writes a file, making the folders on its way.
  void WriteFile(const std::string &name, const std::string &bytes) const;

private:
  std::string path_;
};

std::string ReadFileBytes(const std::string &path);
// How many entries a folder holds (a check that nothing was left behind).
size_t EntriesIn(const std::string &folder);

// The bytes a memory stream holds, and a stream holding bytes (at position 0).
std::string BytesOf(TMemoryStream &stream);
std::unique_ptr<TMemoryStream> StreamOf(const std::string &bytes);

// The message of the E a call raises, or "none" when it raises nothing.
template <typename E> std::string MessageOf(const std::function<void()> &call) {
  try {
    call();
  } catch (const E &e) {
    return e.Message();
  }
  return "none";
}

// The items of a string list, in order.
std::vector<std::string> LinesOf(const TStrings &list);

// A wide text for failure messages: printable ASCII as itself, other units as \uXXXX.
std::string Show(const std::u16string &text);

// The start and stop of each result of a search engine, in order.
using Matches = std::vector<std::pair<int32_t, int32_t>>;
Matches ResultsOf(TSearchEngine &engine);

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

// Makes a tool the running one for the life of the object, then restores the
// one that ran before.
class ToolGuard {
public:
  explicit ToolGuard(tool_type now);
  ~ToolGuard();

private:
  tool_type saved_;
};

// The folder of the shared input data, or empty when it is not beside the
// repository (tests that need it skip then).
std::string SharedDataDir();
// The repository's root folder.
std::string SourceDir();

} // namespace kestrel::test
