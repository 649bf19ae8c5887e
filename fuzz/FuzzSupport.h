// Shared pieces of the fuzz targets: the library brought up once, questions
// answered without a terminal, inputs cut into parts, a private folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <kestrel/kestrel.h>

namespace kestrel::fuzz {

// Brings the library up for the whole run; message boxes answer OK.
inline void StartLibrary() {
  static bool started = [] {
    Initialize();
    SetMessageBoxHandler([](const std::string &, const std::string &, uint32_t) { return IDOK; });
    return true;
  }();
  (void)started;
}

// Reads an input front to back; past its end every read gives zeros or
// empty text, so any input is a valid one.
class Input {
public:
  Input(const uint8_t *data, size_t size) : p_(data), left_(size) {}
  uint8_t Byte() {
    if (left_ == 0) return 0;
    --left_;
    return *p_++;
  }
  // Up to n bytes.
  std::string Bytes(size_t n) {
    if (n > left_) n = left_;
    std::string s(reinterpret_cast<const char *>(p_), n);
    p_ += n;
    left_ -= n;
    return s;
  }
  // A part whose length comes from the next byte.
  std::string Part() { return Bytes(Byte()); }
  std::string Rest() { return Bytes(left_); }
  size_t Left() const { return left_; }

private:
  const uint8_t *p_;
  size_t left_;
};

// Pairs of bytes as UTF-16 units, low byte first.
inline std::u16string Units(std::string_view bytes) {
  std::u16string s(bytes.size() / 2, u'\0');
  for (size_t i = 0; i < s.size(); ++i)
    s[i] = static_cast<char16_t>(uint8_t(bytes[2 * i]) | uint8_t(bytes[2 * i + 1]) << 8);
  return s;
}

// A folder of the target's own below the system's temporary folder, made
// once per run and removed when the run ends.
inline const std::string &PrivateFolder() {
  // Never freed: the removal at exit runs after static objects are gone.
  static const std::string *folder = [] {
    std::string pattern = "/dev/shm/kestrel-fuzz-XXXXXX";
    if (!::mkdtemp(pattern.data())) std::abort();
    std::atexit([] { std::system(("rm -rf " + PrivateFolder()).c_str()); });
    return new std::string(pattern);
  }();
  return *folder;
}

// Writes bytes to a file, replacing it.
// A file's bytes; empty when it can't be read.
inline std::string FileBytes(const std::string &path) {
  std::string bytes;
  if (FILE *f = std::fopen(path.c_str(), "rb")) {
    char buf[4096];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
      bytes.append(buf, n);
    std::fclose(f);
  }
  return bytes;
}

inline void WriteFile(const std::string &path, const std::string &bytes) {
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f) std::abort();
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size()) std::abort();
  std::fclose(f);
}

// A finding: the message goes to standard error and the run stops there.
[[noreturn]] inline void Finding(const char *what) {
  std::fprintf(stderr, "finding: %s\n", what);
  std::abort();
}

} // namespace kestrel::fuzz

// Each target is a program of its own: the library comes up once, before
// the first input.
extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  kestrel::fuzz::StartLibrary();
  return 0;
}
