#include "ZipWriter.h"

#include <stdexcept>
#include <zip.h>

namespace kestrel::test {

namespace {

zip_int64_t AddEntry(zip_t *z, const ZipEntry &e) {
  if (!e.name.empty() && e.name.back() == '/')
    return zip_dir_add(z, e.name.c_str(), ZIP_FL_ENC_UTF_8);
  zip_source_t *src = zip_source_buffer(z, e.data.data(), e.data.size(), 0);
  zip_int64_t index = zip_file_add(z, e.name.c_str(), src, ZIP_FL_ENC_UTF_8);
  if (index < 0)
    zip_source_free(src);
  else if (e.store)
    zip_set_file_compression(z, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
  return index;
}

} // namespace

void WriteZip(const std::string &path, const std::vector<ZipEntry> &entries,
              const std::string &comment) {
  int error = 0;
  zip_t *z = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  if (!z) throw std::runtime_error("zip_open failed for " + path);
  for (const ZipEntry &e : entries) {
    zip_int64_t index = AddEntry(z, e);
    if (index < 0) {
      zip_discard(z);
      throw std::runtime_error("cannot add " + e.name);
    }
    const auto at = static_cast<zip_uint64_t>(index);
    if (e.mtime) zip_file_set_mtime(z, at, e.mtime, 0);
    if (e.dosAttributes >= 0)
      zip_file_set_external_attributes(z, at, 0, ZIP_OPSYS_DOS,
                                       static_cast<zip_uint32_t>(e.dosAttributes));
  }
  if (!comment.empty())
    zip_set_archive_comment(z, comment.data(), static_cast<zip_uint16_t>(comment.size()));
  if (zip_close(z) != 0) {
    zip_discard(z);
    throw std::runtime_error("zip_close failed for " + path);
  }
}

std::string EmptyZipBytes(const std::string &comment) {
  std::string bytes("PK\x05\x06", 4);
  bytes.append(16, '\0');
  bytes.push_back(static_cast<char>(comment.size() & 0xFF));
  bytes.push_back(static_cast<char>(comment.size() >> 8));
  return bytes + comment;
}

std::time_t LocalTime(int year, int month, int day, int hour, int min, int sec) {
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
