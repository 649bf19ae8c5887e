// Folders and ZIP archives as inputs of kestrel search.
#include "SearchInputs.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include <kestrel/files/TextFiles.h>
#include <kestrel/kestrel.h>

namespace kestrel::cli {

// Brings members out to a private temporary folder, one at a time: the
// library's routine unpacks into the platform's temporary folder, so the
// command points that at a folder of its own, where replacing a file left by
// an earlier member is always right.
class MemberReader {
public:
  MemberReader() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kestrel-search-XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr)
      throw EInOutError("cannot make a temporary folder for archive members");
    folder_ = pattern;
    SetTempPath(folder_);
    previous_ = SetMessageBoxHandler(
        [](const std::string &, const std::string &, uint32_t) { return IDOK; });
  }
  ~MemberReader() {
    SetMessageBoxHandler(previous_);
    SetTempPath("");
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
  }
  MemberReader(const MemberReader &) = delete;
  MemberReader &operator=(const MemberReader &) = delete;

  std::string Load(const std::string &name, int32_t number) {
    const std::string file = OpenedAZipFileToTempDir(name, number);
    if (file.empty()) throw EFOpenError(name + ": the archive member could not be unpacked");
    std::string bytes = ReadFileBytes(file);
    DeleteFile(file);
    return bytes;
  }

private:
  std::string folder_;
  MessageBoxHandler previous_;
};

namespace {

// Collects what one scanner lists, folder after folder.
struct Collector {
  TPeruseDir *scanner;
  std::vector<TMySearchRec> found; // plain files with their folder, members as they are
  bool failed = false;
  void List(const std::string &folder) {
    std::unique_ptr<TMySearchRecList> list(scanner->ListofAllFilesIn(folder));
    if (!list) {
      failed = true;
      return;
    }
    const std::string dir = IncludeTrailingPathDelimiter(folder);
    for (int32_t i = 0; i < list->Count(); ++i) {
      TMySearchRec rec = list->GetAMySearchRec(i);
      if (rec.ZipNumber == 0) rec.Name = dir + rec.Name;
      found.push_back(rec);
    }
  }
};

} // namespace

SearchInputs::SearchInputs(std::string masks, bool recursive)
    : masks_(std::move(masks)), recursive_(recursive) {}

SearchInputs::~SearchInputs() = default;

namespace {

std::string ReadStandardInput() {
  std::ostringstream bytes;
  bytes << std::cin.rdbuf();
  return bytes.str();
}

} // namespace

void SearchInputs::Add(const std::string &path, std::vector<Input> &inputs) {
  if (path == "-")
    inputs.push_back({"(standard input)", ReadStandardInput});
  else if (DirectoryExists(path))
    AddFolder(path, inputs);
  else if (IsAZipFile(path) && FileExists(path))
    AddArchive(path, inputs);
  else
    inputs.push_back({path, [path] { return ReadFileBytes(path); }});
}

void SearchInputs::AddFolder(const std::string &folder, std::vector<Input> &inputs) {
  TPeruseDir scanner(masks_, "*", masks_, true, false, faAnyFile);
  Collector collector{&scanner, {}, false};
  if (recursive_) scanner.OnFoundDir = TFoundDirEvent::Bind<&Collector::List>(&collector);
  collector.List(folder);
  if (recursive_) scanner.ProcessAllSubDirectories(folder);
  if (collector.failed) throw EInOutError("the scan of " + folder + " failed");
  if (collector.found.empty()) NoteUnmatchedFolder(folder);
  for (const TMySearchRec &rec : collector.found) {
    if (rec.ZipNumber == 0) {
      const std::string name = rec.Name;
      inputs.push_back({name, [name] { return ReadFileBytes(name); }});
      continue;
    }
    if (!members_) members_ = std::make_shared<MemberReader>();
    auto reader = members_;
    const std::string name = rec.Name;
    const int32_t number = rec.ZipNumber;
    inputs.push_back({name, [reader, name, number] { return reader->Load(name, number); }});
  }
}

// A folder that holds files, none of which the masks take: say so, since
// the masks are easy to forget.
void SearchInputs::NoteUnmatchedFolder(const std::string &folder) const {
  TPeruseDir all("*", "*", "*", false, true, faAnyFile);
  std::unique_ptr<TMySearchRecList> list(all.ListofAllFilesIn(folder));
  if (!list || list->Count() == 0) return;
  std::cerr << "kestrel search: " << folder << ": none of its " << list->Count() << " file"
            << (list->Count() == 1 ? "" : "s") << " matches --files \"" << masks_
            << "\" (give --files to search others, e.g. --files \"*\")\n";
}

void SearchInputs::AddArchive(const std::string &archive, std::vector<Input> &inputs) {
  TPeruseDir scanner(masks_, "*", masks_, true, false, faAnyFile);
  TMySearchRecList list;
  scanner.AddAZip(&list, ExtractFilePath(archive), ExtractFileName(archive));
  if (scanner.fZipsRead == 0) throw EInOutError(archive + ": not a readable ZIP archive");
  if (!members_) members_ = std::make_shared<MemberReader>();
  for (int32_t i = 0; i < list.Count(); ++i) {
    const TMySearchRec rec = list.GetAMySearchRec(i);
    auto reader = members_;
    inputs.push_back({rec.Name, [reader, rec] { return reader->Load(rec.Name, rec.ZipNumber); }});
  }
}

} // namespace kestrel::cli
