// Writes real ZIP archives for tests, with libzip. Header only, so that every
// test program can include it ("frame/ZipTestSupport.h").
#pragma once

#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>
#include <zip.h>

namespace kestrel::test {

struct ZipEntry {
  std::string name;      // stored name, folders included ("sub/c.txt", "dir/")
  std::string data;      // ignored for a folder entry (a name ending in "/")
  std::time_t mtime = 0; // 0: leave libzip's default
  bool store = false;    // stored without compression
};

inline void WriteZip(const std::string &path, const std::vector<ZipEntry> &entries,
                     const std::string &comment = "") {
  int error = 0;
  zip_t *z = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  if (!z) throw std::runtime_error("zip_open failed for " + path);
  for (const ZipEntry &e : entries) {
    zip_int64_t index;
    if (!e.name.empty() && e.name.back() == '/') {
      index = zip_dir_add(z, e.name.c_str(), ZIP_FL_ENC_UTF_8);
    } else {
      zip_source_t *src = zip_source_buffer(z, e.data.data(), e.data.size(), 0);
      index = zip_file_add(z, e.name.c_str(), src, ZIP_FL_ENC_UTF_8);
      if (index < 0)
        zip_source_free(src);
      else if (e.store)
        zip_set_file_compression(z, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    }
    if (index < 0) {
      zip_discard(z);
      throw std::runtime_error("cannot add " + e.name);
    }
    if (e.mtime) zip_file_set_mtime(z, static_cast<zip_uint64_t>(index), e.mtime, 0);
  }
  if (!comment.empty())
    zip_set_archive_comment(z, comment.data(), static_cast<zip_uint16_t>(comment.size()));
  if (zip_close(z) != 0) {
    zip_discard(z);
    throw std::runtime_error("zip_close failed for " + path);
  }
}

// A local time as the system's clock counts it.
inline std::time_t LocalTime(int year, int month, int day, int hour, int min, int sec) {
  std::tm tm{};
  tm.tm_year = year - 1900;
  tm.tm_mon = month - 1;
  tm.tm_mday = day;
  tm.tm_hour = hour;
  tm.tm_min = min;
  tm.tm_sec = sec;
  tm.tm_isdst = -1;
  return std::mktime(&tm);
}

} // namespace kestrel::test
