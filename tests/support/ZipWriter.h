// Writes real ZIP archives for tests, with libzip.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace kestrel::test {

struct ZipEntry {
  std::string name;           // stored name, folders included ("sub/c.txt", "dir/")
  std::string data;           // ignored for a folder entry (a name ending in "/")
  std::time_t mtime = 0;      // 0: leave libzip's default
  bool store = false;         // stored without compression
  int32_t dosAttributes = -1; // the external attributes as DOS bits; -1: libzip's default
};

// Writes the archive, replacing any file of that name; raises std::runtime_error.
void WriteZip(const std::string &path, const std::vector<ZipEntry> &entries,
              const std::string &comment = "");

// The bytes of an archive with no entries: the end record alone, with a comment.
std::string EmptyZipBytes(const std::string &comment);

// A local time as the system's clock counts it.
std::time_t LocalTime(int year, int month, int day, int hour, int min, int sec);

} // namespace kestrel::test
