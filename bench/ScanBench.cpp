// Corpus walking. FolderScan: listing every folder of a generated tree of
// 25,000 files (ProcessAllSubDirectories with ListofAllFilesIn per folder)
// against `find DIR -name MASK`. ZipMembers: listing the members of a
// generated archive of 20,000 members against `zipinfo -1`. The peers run as
// programs, their output read through a pipe, as a tool would use them.
#include <benchmark/benchmark.h>

#include <zip.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <kestrel/files/PeruseDir.h>
#include <kestrel/frame/host/Host.h>

namespace {

namespace fs = std::filesystem;
using namespace kestrel;

constexpr int kTopFolders = 10, kSubFolders = 10, kFilesPerFolder = 250; // 25,000 files
constexpr int kMembers = 20000;

// The generated inputs, made once and removed at exit.
struct Inputs {
  fs::path root;
  fs::path tree, archive;
  Inputs() {
    char pattern[] = "/tmp/kestrel-bench-XXXXXX";
    root = mkdtemp(pattern);
    tree = root / "tree";
    archive = root / "members.zip";
    MakeTree();
    MakeArchive();
  }
  ~Inputs() {
    std::error_code ec;
    fs::remove_all(root, ec);
  }
  void MakeTree() const {
    for (int t = 0; t < kTopFolders; ++t)
      for (int s = 0; s < kSubFolders; ++s) {
        const fs::path dir = tree / ("part" + std::to_string(t)) / ("sub" + std::to_string(s));
        fs::create_directories(dir);
        for (int f = 0; f < kFilesPerFolder; ++f) {
          // Half the files take the mask, so both sides filter.
          const char *ext = f % 2 ? ".txt" : ".dat";
          std::FILE *file = std::fopen((dir / ("text" + std::to_string(f) + ext)).c_str(), "w");
          if (file) std::fclose(file);
        }
      }
  }
  void MakeArchive() const {
    int error = 0;
    zip_t *zip = zip_open(archive.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!zip) return;
    static const char content[] = "a member";
    for (int i = 0; i < kMembers; ++i) {
      const std::string name =
          "folder" + std::to_string(i % 50) + "/member" + std::to_string(i) + ".txt";
      zip_source_t *src = zip_source_buffer(zip, content, sizeof content - 1, 0);
      const zip_int64_t index = zip_file_add(zip, name.c_str(), src, ZIP_FL_ENC_UTF_8);
      if (index < 0)
        zip_source_free(src);
      else
        zip_set_file_compression(zip, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    }
    zip_close(zip);
  }
};

Inputs &TheInputs() {
  static Inputs inputs;
  return inputs;
}

// Runs a command and counts the lines it prints.
long CountLines(const std::string &command) {
  std::FILE *pipe = popen(command.c_str(), "r");
  if (!pipe) return -1;
  long lines = 0;
  char buffer[1 << 16];
  size_t got;
  while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
    for (size_t i = 0; i < got; ++i)
      lines += buffer[i] == '\n';
  pclose(pipe);
  return lines;
}

struct TreeLister {
  TPeruseDir *scanner;
  long files = 0;
  void List(const std::string &folder) {
    std::unique_ptr<TMySearchRecList> list(scanner->ListofAllFilesIn(folder));
    if (list) files += list->Count();
  }
};

void FolderScanKestrel(benchmark::State &state) {
  const std::string root = TheInputs().tree.string();
  long files = 0;
  for (auto _ : state) {
    TPeruseDir scanner("*.txt", "*", "*", false, false, faAnyFile);
    TreeLister lister{&scanner};
    scanner.OnFoundDir = TFoundDirEvent::Bind<&TreeLister::List>(&lister);
    lister.List(root);
    scanner.ProcessAllSubDirectories(root);
    files = lister.files;
  }
  state.counters["files"] = static_cast<double>(files);
  if (files != kTopFolders * kSubFolders * kFilesPerFolder / 2)
    state.SkipWithError("the scan missed files");
}

void FolderScanFind(benchmark::State &state) {
  const std::string command = "find '" + TheInputs().tree.string() + "' -name '*.txt'";
  long files = 0;
  for (auto _ : state)
    files = CountLines(command);
  state.counters["files"] = static_cast<double>(files);
  if (files != kTopFolders * kSubFolders * kFilesPerFolder / 2)
    state.SkipWithError("find is missing or missed files");
}

// The listing needs each file's size and date, which `find -name` never asks
// the system for: this peer prints them, so it looks at each file as we do.
void FolderScanFindWithStat(benchmark::State &state) {
  const std::string command =
      "find '" + TheInputs().tree.string() + "' -name '*.txt' -printf '%s %T@ %p\\n'";
  long files = 0;
  for (auto _ : state)
    files = CountLines(command);
  state.counters["files"] = static_cast<double>(files);
  if (files != kTopFolders * kSubFolders * kFilesPerFolder / 2)
    state.SkipWithError("find is missing or missed files");
}

void ZipMembersKestrel(benchmark::State &state) {
  const fs::path archive = TheInputs().archive;
  const std::string folder = IncludeTrailingPathDelimiter(archive.parent_path().string());
  long members = 0;
  for (auto _ : state) {
    TPeruseDir scanner("*.*", "*", "*", true, false, faAnyFile);
    TMySearchRecList list;
    scanner.AddAZip(&list, folder, archive.filename().string());
    members = list.Count();
  }
  state.counters["members"] = static_cast<double>(members);
  if (members != kMembers) state.SkipWithError("the listing missed members");
}

void ZipMembersZipinfo(benchmark::State &state) {
  const std::string command = "zipinfo -1 '" + TheInputs().archive.string() + "'";
  long members = 0;
  for (auto _ : state)
    members = CountLines(command);
  state.counters["members"] = static_cast<double>(members);
  if (members != kMembers) state.SkipWithError("zipinfo is missing or missed members");
}

} // namespace

BENCHMARK(FolderScanKestrel)->Name("FolderScan/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(FolderScanFind)->Name("FolderScan/find")->Unit(benchmark::kMillisecond);
BENCHMARK(FolderScanFindWithStat)->Name("FolderScan/find-printf")->Unit(benchmark::kMillisecond);
BENCHMARK(ZipMembersKestrel)->Name("ZipMembers/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(ZipMembersZipinfo)->Name("ZipMembers/zipinfo")->Unit(benchmark::kMillisecond);
