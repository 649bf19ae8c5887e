// kestrel scan: lists the files of a folder and the members of its ZIP
// archives, as the folder scanner sees them.
#include <cmath>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <memory>
#include <sstream>

#include <kestrel/kestrel.h>

#include "Cli.h"

namespace kestrel::cli {
namespace {

// Host date-time (local wall-clock days since 1899-12-30) as text.
std::string DateText(TDateTime date) {
  const double seconds = std::round((date - 25569.0) * 86400.0);
  if (!std::isfinite(seconds) || std::fabs(seconds) > 1e12) return "?";
  const time_t t = static_cast<time_t>(seconds);
  struct tm parts {};
  gmtime_r(&t, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return text;
}

struct Entry {
  std::string fullName;
  TMySearchRec rec;
};

class Scan {
public:
  Scan(const Args &args) : json_(args.Has("json")), recursive_(args.Has("recursive")) {
    const std::string dirs = args.Value("dirs", "*");
    scanner_ =
        std::make_unique<TPeruseDir>(args.Value("files", "*"), dirs, args.Value("members", "*"),
                                     !args.Has("no-zips"), args.Has("zips-as-files"), faAnyFile);
    scanner_->OnFoundDir = TFoundDirEvent::Bind<&Scan::FoundDir>(this);
    scanner_->OnZipReading = TZipReadingEvent::Bind<&Scan::ZipReading>(this);
    scanner_->OnZipStartReading = TZipStartReadingEvent::Bind<&Scan::ZipStart>(this);
  }

  int Run(const std::string &folder) {
    if (!DirectoryExists(folder)) throw Exception("no such folder: " + folder);
    ListFolder(folder);
    if (recursive_) scanner_->ProcessAllSubDirectories(folder);
    progress_.Done();
    Print(folder);
    return failed_ ? 1 : 0;
  }

private:
  void ListFolder(const std::string &folder) {
    progress_.Update("scanning " + folder + " (" + std::to_string(entries_.size()) + " found)");
    std::unique_ptr<TMySearchRecList> list(scanner_->ListofAllFilesIn(folder));
    if (!list) {
      std::cerr << "kestrel scan: the scan of " << folder << " failed\n";
      failed_ = true;
      return;
    }
    const std::string dir = IncludeTrailingPathDelimiter(folder);
    for (int32_t i = 0; i < list->Count(); ++i) {
      TMySearchRec rec = list->GetAMySearchRec(i);
      entries_.push_back({rec.ZipNumber > 0 ? rec.Name : dir + rec.Name, rec});
    }
  }
  void FoundDir(const std::string &dir) { ListFolder(dir); }
  void ZipStart(const std::string &zip) { currentZip_ = zip; }
  void ZipReading(int32_t num, int32_t outOf) {
    if (num % 1000 == 0)
      progress_.Update("reading " + currentZip_ + " (" + std::to_string(num) + " of " +
                       std::to_string(outOf) + " members)");
  }

  void Print(const std::string &folder) const {
    if (json_) {
      std::cout << "{\"folder\":" << JsonString(folder) << ",\"entries\":[";
      for (size_t i = 0; i < entries_.size(); ++i) {
        const Entry &e = entries_[i];
        std::cout << (i ? ",\n  " : "\n  ") << "{\"name\":" << JsonString(e.fullName)
                  << ",\"size\":" << e.rec.Size << ",\"date\":\"" << DateText(e.rec.Date)
                  << "\",\"attr\":" << static_cast<uint32_t>(e.rec.Attr)
                  << ",\"zip_number\":" << e.rec.ZipNumber << "}";
      }
      std::cout << "\n],\"files\":" << entries_.size() << ",\"zips_read\":" << scanner_->fZipsRead
                << ",\"zip_members_found\":" << scanner_->fZipMembersFound
                << ",\"dirs_found\":" << scanner_->fDirsFound << "}\n";
      return;
    }
    for (const Entry &e : entries_) {
      char number[16] = "";
      if (e.rec.ZipNumber > 0) std::snprintf(number, sizeof number, "#%d", e.rec.ZipNumber);
      std::printf("%10d  %s  %6s  %s\n", e.rec.Size, DateText(e.rec.Date).c_str(), number,
                  e.fullName.c_str());
    }
    std::printf("%zu entries (%d archive members, %d archives read, %d sub-folders)\n",
                entries_.size(), scanner_->fZipMembersFound, scanner_->fZipsRead,
                scanner_->fDirsFound);
  }

  bool json_, recursive_;
  bool failed_ = false;
  std::unique_ptr<TPeruseDir> scanner_;
  std::vector<Entry> entries_;
  std::string currentZip_;
  Progress progress_;
};

int Run(const Args &args) {
  const std::vector<std::string> known = {"files",         "dirs",      "members", "no-zips",
                                          "zips-as-files", "recursive", "json"};
  args.RefuseSingleDash();
  if (!args.Unknown(known).empty())
    throw UsageError{"unknown option " + args.Unknown(known).front()};
  if (args.Positional().size() != 1) throw UsageError{"give one folder"};
  Scan scan(args);
  return scan.Run(args.Positional()[0]);
}

CommandRegistration
    reg({"scan",
         "list the files of a folder and the members of its ZIP archives",
         "scan FOLDER [--files MASKS] [--dirs MASKS] [--members MASKS] [--no-zips]\n"
         "            [--zips-as-files] [--recursive] [--json]\n"
         "  MASKS: up to 10 wildcard masks separated by \";\" (default \"*\").\n"
         "  --files picks plain files, --members the members of ZIP archives,\n"
         "  --dirs the sub-folders walked with --recursive (a folder the mask\n"
         "  refuses is not entered). Each line: size, date, member number, name.",
         {"files", "dirs", "members"},
         Run});

} // namespace
} // namespace kestrel::cli
