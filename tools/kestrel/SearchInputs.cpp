// Folders, ZIP archives and files as inputs of kestrel search.
#include "SearchInputs.h"

#include <iostream>

#include <kestrel/kestrel.h>

#include "FastSearch.h"

namespace kestrel::cli {

namespace {

// A stream that appends what is written to a string of the caller's.
class StringSink : public TStream {
public:
  explicit StringSink(std::string &bytes) : bytes_(bytes) {}
  int32_t Read(void *, int32_t) override { return 0; }
  int32_t Write(const void *buffer, int32_t count) override {
    bytes_.append(static_cast<const char *>(buffer), static_cast<size_t>(count));
    return count;
  }
  using TStream::Seek;
  int64_t Seek(int64_t, TSeekOrigin) override { return static_cast<int64_t>(bytes_.size()); }

private:
  std::string &bytes_;
};

[[noreturn]] void TooLarge(int64_t size, int64_t limit) {
  throw InputSkipped{"larger than --max-file-size (" + SizeText(size) + " > " + SizeText(limit) +
                     "), not read"};
}

} // namespace

std::string ReadFileLimited(const std::string &path, int64_t limit) {
  const std::string problem = FileProblem(path);
  if (!problem.empty()) throw InputFailed{problem};
  const THandle h = FileOpen(path, fmOpenRead | fmShareDenyNone);
  if (h == INVALID_HANDLE_VALUE) throw InputFailed{SysErrorMessage(GetLastOSError())};
  THandleStream file(h);
  std::string bytes;
  try {
    const int64_t size = file.GetSize();
    if (size > limit) TooLarge(size, limit);
    bytes.resize(static_cast<size_t>(size));
    // A file that grows while it is read is cut at its size when opened.
    int64_t done = 0;
    while (done < size) {
      const int32_t n = file.Read(bytes.data() + done,
                                  static_cast<int32_t>(std::min<int64_t>(size - done, 1 << 24)));
      if (n <= 0) break;
      done += n;
    }
    if (done < size) throw InputFailed{"the file got shorter while it was read"};
  } catch (...) {
    FileClose(h);
    throw;
  }
  FileClose(h);
  return bytes;
}

namespace {

// A plain file, block after block through the platform's handle.
class FileBlocks : public ByteSource {
public:
  explicit FileBlocks(THandle h) : h_(h) {}
  ~FileBlocks() override { FileClose(h_); }
  FileBlocks(const FileBlocks &) = delete;
  FileBlocks &operator=(const FileBlocks &) = delete;

  size_t Read(char *to, size_t n) override {
    const int32_t got = FileRead(h_, to, static_cast<int32_t>(std::min<size_t>(n, 1 << 30)));
    if (got < 0) throw InputFailed{SysErrorMessage(GetLastOSError())};
    return static_cast<size_t>(got);
  }

private:
  THandle h_;
};

} // namespace

std::unique_ptr<ByteSource> OpenFileBlocks(const std::string &path) {
  const std::string problem = FileProblem(path);
  if (!problem.empty()) throw InputFailed{problem};
  const THandle h = FileOpen(path, fmOpenRead | fmShareDenyNone);
  if (h == INVALID_HANDLE_VALUE) throw InputFailed{SysErrorMessage(GetLastOSError())};
  return std::make_unique<FileBlocks>(h);
}

// Reads members from one archive at a time, read once when its first
// member is asked for and kept while its members follow.
class MemberReader {
public:
  explicit MemberReader(int64_t limit) : limit_(limit) {}

  std::string Load(const std::string &archive, int32_t number) {
    Open(archive);
    if (!failure_.empty()) throw InputFailed{"the archive can't be read: " + failure_};
    const int32_t index = number - 1;
    if (index < 0 || index >= zip_->GetCount())
      throw InputFailed{"the member is no longer in the archive"};
    const int64_t size = zip_->GetUnCompressedSize(index);
    if (size > limit_) TooLarge(size, limit_);
    std::string bytes;
    bytes.reserve(static_cast<size_t>(size));
    StringSink sink(bytes);
    try {
      zip_->UnZipToStream(&sink, index);
    } catch (const EZipError &e) {
      throw InputFailed{e.Reason};
    }
    return bytes;
  }

private:
  void Open(const std::string &archive) {
    if (zip_ && archive == archive_) return;
    archive_ = archive;
    failure_.clear();
    zip_ = std::make_unique<TVCLUnZip>(nullptr);
    zip_->SetZipName(archive);
    try {
      zip_->ReadZip();
    } catch (const EZipError &e) {
      failure_ = e.Reason;
    }
  }

  int64_t limit_;
  std::string archive_, failure_;
  std::unique_ptr<TVCLUnZip> zip_;
};

// What one scanner lists, folder after folder: plain files with their
// folder, members with their archive.
struct SearchInputs::Collector {
  struct Found {
    TMySearchRec rec;
    std::string archive; // for a member
  };
  TPeruseDir *scanner;
  std::vector<Found> found;
  std::vector<std::string> archives; // of the members listed by the current List
  std::string currentArchive;
  bool failed = false;

  void List(const std::string &folder) {
    archives.clear();
    std::unique_ptr<TMySearchRecList> list(scanner->ListofAllFilesIn(folder));
    if (!list) {
      failed = true;
      return;
    }
    const std::string dir = IncludeTrailingPathDelimiter(folder);
    size_t member = 0;
    for (int32_t i = 0; i < list->Count(); ++i) {
      TMySearchRec rec = list->GetAMySearchRec(i);
      if (rec.ZipNumber == 0) {
        rec.Name = dir + rec.Name;
        found.push_back({rec, {}});
      } else if (member < archives.size()) {
        found.push_back({rec, archives[member++]});
      }
    }
  }
  void ZipStart(const std::string &archive) { currentArchive = archive; }
  void Member(TMySearchRec &) { archives.push_back(currentArchive); }

  void Attach(bool recursive) {
    if (recursive) scanner->OnFoundDir = TFoundDirEvent::Bind<&Collector::List>(this);
    scanner->OnZipStartReading = TZipStartReadingEvent::Bind<&Collector::ZipStart>(this);
    scanner->OnListingZipFile = TListingFileEvent::Bind<&Collector::Member>(this);
  }
};

SearchInputs::SearchInputs(Options options, FileProblems &problems)
    : options_(std::move(options)), problems_(problems) {}

SearchInputs::~SearchInputs() = default;

namespace {

// Standard input up to the limit, like a file.
std::string ReadStandardInput(int64_t limit) {
  std::string bytes;
  char buffer[1 << 16];
  while (std::cin.read(buffer, sizeof buffer) || std::cin.gcount() > 0) {
    bytes.append(buffer, static_cast<size_t>(std::cin.gcount()));
    if (static_cast<int64_t>(bytes.size()) > limit)
      throw InputSkipped{"more than --max-file-size (" + SizeText(limit) + "), not read"};
  }
  if (std::cin.bad()) throw InputFailed{"standard input could not be read"};
  return bytes;
}

Input PlainFile(const std::string &path, int64_t limit) {
  return {path, [path, limit] { return ReadFileLimited(path, limit); },
          [path] { return OpenFileBlocks(path); }};
}

} // namespace

void SearchInputs::Add(const std::string &path, std::vector<Input> &inputs) {
  const int64_t limit = options_.maxFileSize;
  if (path == "-")
    inputs.push_back({"(standard input)", [limit] { return ReadStandardInput(limit); }, {}});
  else if (DirectoryExists(path))
    AddFolder(path, inputs);
  else if (IsAZipFile(path) && FileExists(path))
    AddArchive(path, inputs);
  else
    inputs.push_back(PlainFile(path, limit));
}

void SearchInputs::AddFound(const Collector &collector, std::vector<Input> &inputs) {
  const int64_t limit = options_.maxFileSize;
  for (const Collector::Found &f : collector.found) {
    const std::string name = f.rec.Name;
    if (f.rec.ZipNumber == 0) {
      inputs.push_back(PlainFile(name, limit));
      continue;
    }
    if (!members_) members_ = std::make_shared<MemberReader>(limit);
    auto reader = members_;
    const std::string archive = f.archive;
    const int32_t number = f.rec.ZipNumber;
    inputs.push_back(
        {name, [reader, archive, number] { return reader->Load(archive, number); }, {}});
  }
}

void SearchInputs::AddFolder(const std::string &folder, std::vector<Input> &inputs) {
  TPeruseDir scanner(options_.masks, "*", options_.masks, true, false, faAnyFile);
  scanner.fFollowLinks = options_.followLinks;
  scanner.OnSkipped = problems_.SkippedEvent();
  Collector collector{&scanner, {}, {}, {}, false};
  collector.Attach(options_.recursive);
  collector.List(folder);
  if (options_.recursive) scanner.ProcessAllSubDirectories(folder);
  if (collector.failed) problems_.Failure(folder, "the scan of the folder failed");
  if (collector.found.empty()) NoteUnmatchedFolder(folder);
  AddFound(collector, inputs);
}

// A folder that holds files, none of which the masks take: say so, since
// the masks are easy to forget.
void SearchInputs::NoteUnmatchedFolder(const std::string &folder) const {
  TPeruseDir all("*", "*", "*", false, true, faAnyFile);
  std::unique_ptr<TMySearchRecList> list(all.ListofAllFilesIn(folder));
  if (!list || list->Count() == 0) return;
  std::cerr << "kestrel search: " << DisplayName(folder) << ": none of its " << list->Count()
            << " file" << (list->Count() == 1 ? "" : "s") << " matches --files \"" << options_.masks
            << "\" (give --files to search others, e.g. --files \"*\")\n";
}

void SearchInputs::AddArchive(const std::string &archive, std::vector<Input> &inputs) {
  TPeruseDir scanner(options_.masks, "*", options_.masks, true, false, faAnyFile);
  scanner.OnSkipped = problems_.SkippedEvent();
  Collector collector{&scanner, {}, {}, {}, false};
  collector.Attach(false);
  TMySearchRecList list;
  scanner.AddAZip(&list, ExtractFilePath(archive), ExtractFileName(archive));
  for (size_t i = 0; i < collector.archives.size() && i < size_t(list.Count()); ++i)
    collector.found.push_back({list.GetAMySearchRec(int32_t(i)), collector.archives[i]});
  AddFound(collector, inputs);
}

bool ReportingFailures(const std::string &name, FileProblems &problems,
                       const std::function<void()> &work) {
  try {
    work();
    return true;
  } catch (const InputSkipped &skipped) {
    problems.Note(name, skipped.why);
  } catch (const InputFailed &failed) {
    problems.Failure(name, failed.why);
  } catch (const std::bad_alloc &) {
    problems.Failure(name, "out of memory");
  } catch (const Exception &e) {
    problems.Failure(name, e.Message());
  }
  return false;
}

bool LoadOrReport(const Input &in, FileProblems &problems, std::string &bytes) {
  return ReportingFailures(in.name, problems, [&] { bytes = in.load(); });
}

} // namespace kestrel::cli
