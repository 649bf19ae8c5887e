#include "FileProblems.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <iostream>

#include "Cli.h"

namespace kestrel::cli {

std::string DisplayName(const std::string &name) {
  return EscapeControls(name, false);
}

void FileProblems::Note(const std::string &name, const std::string &what) {
  ++notes_;
  std::cerr << "kestrel " << command_ << ": note: " << DisplayName(name) << ": " << what << "\n";
}

void FileProblems::Failure(const std::string &name, const std::string &why) {
  ++failures_;
  ++reasons_[why];
  std::cerr << "kestrel " << command_ << ": " << DisplayName(name) << ": " << why << "\n";
}

void FileProblems::Skipped(const std::string &name, TSkipReason why, const std::string &detail) {
  switch (why) {
  case TSkipReason::NotAFile:
    Note(name, detail + ", not read");
    break;
  case TSkipReason::LinkNotFollowed:
    Note(name, detail + ", not followed (--follow-links follows links)");
    break;
  case TSkipReason::FolderWalked:
    Note(name, detail + ", not walked again");
    break;
  case TSkipReason::MembersLeftOut:
    Note(name, detail + " left out");
    break;
  case TSkipReason::UnreadableFolder:
  case TSkipReason::UnreadableArchive:
    Failure(name, detail);
    break;
  }
}

std::string FileProblems::Summary() const {
  if (failures_ == 0) return {};
  std::string text =
      std::to_string(failures_) + (failures_ == 1 ? " file" : " files") + " could not be read (";
  bool first = true;
  for (const auto &[why, count] : reasons_) {
    text += (first ? "" : ", ") + why + ": " + std::to_string(count);
    first = false;
  }
  return text + ")";
}

std::string FileProblems::Json() const {
  std::string text = "{\"failed\":" + std::to_string(failures_) + ",\"reasons\":{";
  bool first = true;
  for (const auto &[why, count] : reasons_) {
    text += (first ? "" : ",") + JsonString(why) + ":" + std::to_string(count);
    first = false;
  }
  return text + "},\"notes\":" + std::to_string(notes_) + "}";
}

std::string FileProblem(const std::string &name) {
  TFileKind kind;
  TFileIdentity id;
  if (!FileKindOf(name, kind, id)) return SysErrorMessage(GetLastOSError());
  if (kind != TFileKind::Regular) return std::string(FileKindText(kind)) + ", not a file";
  const THandle h = FileOpen(name, fmOpenRead | fmShareDenyNone);
  if (h == INVALID_HANDLE_VALUE) return SysErrorMessage(GetLastOSError());
  FileClose(h);
  return {};
}

int64_t MaxFileSize(const std::string &text) {
  if (text.empty()) return kDefaultMaxFileSize;
  size_t digits = 0;
  while (digits < text.size() && std::isdigit(static_cast<unsigned char>(text[digits])))
    ++digits;
  const std::string unit = text.substr(digits);
  int shift = -1;
  if (unit.empty() || unit == "B" || unit == "b") shift = 0;
  for (const auto &[names, bits] : {std::pair{"Kk", 10}, {"Mm", 20}, {"Gg", 30}})
    if (unit.size() == 1 && std::string(names).find(unit[0]) != std::string::npos) shift = bits;
  if (digits == 0 || digits > 12 || shift < 0)
    throw UsageError{"--max-file-size needs a size in bytes, with K, M or G if wanted "
                     "(such as 500M), not '" +
                     text + "'"};
  const int64_t number = std::stoll(text.substr(0, digits));
  if (number > (int64_t(1) << 40) >> shift)
    throw UsageError{"--max-file-size " + text + " is more than 1 TiB"};
  return number << shift;
}

std::string SizeText(int64_t bytes) {
  const char *units[] = {"bytes", "KiB", "MiB", "GiB", "TiB"};
  double value = static_cast<double>(bytes);
  int unit = 0;
  while (value >= 1024 && unit < 4) {
    value /= 1024;
    ++unit;
  }
  char text[32];
  if (unit == 0)
    std::snprintf(text, sizeof text, "%lld bytes", static_cast<long long>(bytes));
  else
    std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
  return text;
}

} // namespace kestrel::cli
