// Real ZIP archives for the tests, written with libzip.
#pragma once

#include <zip.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrel::test {

struct ZipEntry {
  std::string name; // stored name; a trailing "/" makes a folder entry
  std::string content;
  time_t mtime = 0; // 0: libzip's default
};

// Writes an archive holding the entries in order, with an optional comment.
inline void MakeZip(const std::string &path, const std::vector<ZipEntry> &entries,
                    const std::string &comment = "") {
  int error = 0;
  zip_t *zip = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  if (zip == nullptr) throw std::runtime_error("zip_open failed for " + path);
  for (const ZipEntry &e : entries) {
    zip_int64_t index;
    if (!e.name.empty() && e.name.back() == '/') {
      index = zip_dir_add(zip, e.name.c_str(), ZIP_FL_ENC_UTF_8);
    } else {
      // libzip frees the copy once the archive is written.
      void *copy = std::malloc(e.content.size() + 1);
      std::memcpy(copy, e.content.data(), e.content.size());
      zip_source_t *src = zip_source_buffer(zip, copy, e.content.size(), 1);
      index = zip_file_add(zip, e.name.c_str(), src, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
      if (index < 0) zip_source_free(src);
    }
    if (index < 0) {
      zip_discard(zip);
      throw std::runtime_error("cannot add " + e.name + " to " + path);
    }
    if (e.mtime != 0) zip_file_set_mtime(zip, static_cast<zip_uint64_t>(index), e.mtime, 0);
  }
  if (!comment.empty())
    zip_set_archive_comment(zip, comment.data(), static_cast<zip_uint16_t>(comment.size()));
  if (zip_close(zip) != 0) {
    zip_discard(zip);
    throw std::runtime_error("zip_close failed for " + path);
  }
}

// An archive with no entries: only the end record, with the comment.
inline std::string EmptyZipBytes(const std::string &comment = "") {
  std::string bytes("PK\x05\x06", 4);
  bytes.append(16, '\0');
  bytes.push_back(static_cast<char>(comment.size() & 0xFF));
  bytes.push_back(static_cast<char>(comment.size() >> 8));
  return bytes + comment;
}

} // namespace kestrel::test
