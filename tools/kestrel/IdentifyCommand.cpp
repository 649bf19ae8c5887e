// kestrel identify: says what stored list of the suite each file holds.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include <kestrel/kestrel.h>

#include "Cli.h"

namespace kestrel::cli {
namespace {

constexpr const char *kToolEnumNames[kToolTypeCount] = {
    "tallyman",   "lineups",     "salients",    "hub",        "cleaver",     "morpher",
    "hintbox",    "relabeller",  "refresher",   "tonguepick", "widener16",   "glass",
    "netgleaner", "glyph_scope", "twin_seeker", "file_kit",   "tool_spare3", "tool_spare4"};

constexpr const char *kListEnumNames[kListTypeCount] = {"word_list",
                                                        "keyword_list",
                                                        "KW_database_list",
                                                        "simple_consistency_list",
                                                        "detailed_consistency_list",
                                                        "collocate_list",
                                                        "salients_as_word_list",
                                                        "KWDbase_as_word_list",
                                                        "associates_as_word_list",
                                                        "clumps_as_word_list",
                                                        "concordance_list",
                                                        "keyword_plot_list",
                                                        "concordance_plot_list",
                                                        "concordance_cluster_list",
                                                        "concordance_pattern_list",
                                                        "associate_list",
                                                        "clump_list",
                                                        "filename_list",
                                                        "link_list",
                                                        "statistics_list",
                                                        "ratio_stats_list",
                                                        "aligner_list",
                                                        "text_list",
                                                        "tallyman_index_list",
                                                        "kw_cluster_list",
                                                        "none_in_use",
                                                        "notes_window",
                                                        "source_text_window",
                                                        "mutual_information_list",
                                                        "spare5",
                                                        "spare6",
                                                        "spare7",
                                                        "spare8",
                                                        "spare9",
                                                        "spare10"};

enum class Status { current, older32, oldest, batch, unrecognised };
constexpr const char *kStatusNames[] = {"current", "older32", "oldest", "batch", "unrecognised"};
constexpr const char *kStatusTexts[] = {"current 32-bit file", "older 32-bit file",
                                        "oldest-format file", "batch archive",
                                        "not a stored list of the suite"};

struct Verdict {
  Status status = Status::unrecognised;
  list_type kind = list_type::none_in_use;
  tool_type judgedAs = tool_type::hintbox;
  int32_t batchEntries = 0;
  std::optional<int32_t> formatNumber;
  std::string note;
};

std::string ToolLabel(tool_type t) {
  const std::string name = Tool_Name(t);
  return name.empty() ? GetShortToolFilename(t) : name;
}

// Runs the three head tests as one tool would.
Verdict JudgeAs(const std::string &file, tool_type tool) {
  current_tool_var = tool;
  Verdict v;
  v.judgedAs = tool;
  TMKStored_File_rec rec;
  rec.stored_file_name = file;
  if (IsAMarlowick32BitFile(rec) && rec.stored_list_type != list_type::none_in_use) {
    v.status = Status::current;
  } else if (WasAMarlowick32BitFile(rec)) {
    v.status = Status::older32;
  } else if (IsAnOldMarlowickFile(rec)) {
    v.status = Status::oldest;
  } else {
    return v;
  }
  v.kind = rec.stored_list_type;
  return v;
}

bool Known(const Verdict &v) {
  return v.status != Status::unrecognised && v.kind < list_type::spare10 &&
         v.kind != list_type::none_in_use;
}

// The 32-bit format number at the file's start, when there is a head.
std::optional<int32_t> FormatNumber(const std::string &file) {
  std::ifstream in(file, std::ios::binary);
  TCheckSignature head{};
  if (!in.read(reinterpret_cast<char *>(&head), sizeof head)) return std::nullopt;
  return head.signature_number;
}

// Without a tool given, a file is judged as the tool that owns its kind: the
// kind is found first as any tool of each format number would see it.
Verdict Judge(const std::string &file, std::optional<tool_type> given) {
  if (IsAZipFile(file)) {
    TMKStored_File_rec rec;
    rec.stored_file_name = file;
    Verdict v;
    try {
      if (IsABatchZipFileForListType(rec)) {
        v.status = Status::batch;
        v.kind = rec.stored_list_type;
        v.batchEntries = rec.batch_entry_count;
        if (v.kind == list_type::none_in_use) v.note = "its comment names no list kind";
      } else {
        v.note = "a ZIP archive without the batch comment";
      }
    } catch (const Exception &e) {
      v.note = "not a readable ZIP archive: " + e.Message();
    }
    return v;
  }
  Verdict v;
  if (given) {
    v = JudgeAs(file, *given);
  } else {
    for (tool_type probe : {current_tool_var, tool_type::lineups, tool_type::tallyman}) {
      v = JudgeAs(file, probe);
      if (Known(v)) break;
    }
    if (Known(v) && ToolTypeFromListType(v.kind) != v.judgedAs) {
      const tool_type owner = ToolTypeFromListType(v.kind);
      Verdict asOwner = JudgeAs(file, owner);
      if (asOwner.status == Status::unrecognised) {
        asOwner.note = "its format is newer than " + ToolLabel(owner) + " writes";
        asOwner.formatNumber = FormatNumber(file);
      }
      asOwner.kind = v.kind;
      v = asOwner;
    }
  }
  if (v.status == Status::current || v.status == Status::older32)
    v.formatNumber = FormatNumber(file);
  if (v.status == Status::unrecognised && v.note.empty()) v.note = "no known head";
  return v;
}

std::optional<tool_type> ToolFromName(const std::string &name) {
  if (name.empty()) return std::nullopt;
  for (size_t i = 0; i < kToolTypeCount; ++i) {
    const auto t = static_cast<tool_type>(i);
    if (SameText(name, kToolEnumNames[i]) || SameText(name, Tool_Name(t)) ||
        (!GetShortToolFilename(t).empty() && SameText(name, GetShortToolFilename(t))))
      return t;
  }
  throw UsageError{"unknown tool '" + name + "'"};
}

std::string Describe(const std::string &file, const Verdict &v) {
  std::ostringstream out;
  out << file << ": ";
  if (v.status == Status::unrecognised) {
    out << kStatusTexts[size_t(v.status)] << " (" << v.note;
    if (v.formatNumber) out << ", format " << *v.formatNumber;
    out << ")";
    return out.str();
  }
  const tool_type owner = ToolTypeFromListType(v.kind);
  out << kStatusTexts[size_t(v.status)];
  if (v.status == Status::batch)
    out << " holding " << v.batchEntries << (v.batchEntries == 1 ? " list" : " lists");
  if (v.kind != list_type::none_in_use) {
    out << ", " << list_type_as_string[v.kind] << " (" << kListEnumNames[size_t(v.kind)]
        << "), tool " << ToolLabel(owner) << ", extension " << DefaultExtFromListType(v.kind);
  }
  if (v.formatNumber) out << ", format " << *v.formatNumber;
  if (v.status != Status::batch) out << ", judged as " << ToolLabel(v.judgedAs);
  if (!v.note.empty()) out << " (" << v.note << ")";
  return out.str();
}

std::string Json(const std::string &file, const Verdict &v) {
  std::ostringstream out;
  out << "{\"file\":" << JsonString(file) << ",\"status\":\"" << kStatusNames[size_t(v.status)]
      << "\"";
  if (v.status != Status::unrecognised && v.kind != list_type::none_in_use) {
    const tool_type owner = ToolTypeFromListType(v.kind);
    out << ",\"list_type\":\"" << kListEnumNames[size_t(v.kind)]
        << "\",\"list_name\":" << JsonString(list_type_as_string[v.kind]) << ",\"tool\":\""
        << kToolEnumNames[size_t(owner)] << "\",\"tool_name\":" << JsonString(ToolLabel(owner))
        << ",\"extension\":" << JsonString(DefaultExtFromListType(v.kind));
  }
  if (v.status == Status::batch) out << ",\"batch_entries\":" << v.batchEntries;
  if (v.formatNumber) out << ",\"format_number\":" << *v.formatNumber;
  if (v.status != Status::batch && v.status != Status::unrecognised)
    out << ",\"judged_as\":\"" << kToolEnumNames[size_t(v.judgedAs)] << "\"";
  if (!v.note.empty()) out << ",\"note\":" << JsonString(v.note);
  return out.str() + "}";
}

// The files to judge: a folder stands for the files directly in it (archives
// among them, as files), in name order.
std::vector<std::string> FilesOf(const std::vector<std::string> &paths) {
  std::vector<std::string> files;
  for (const std::string &path : paths) {
    if (!DirectoryExists(path)) {
      files.push_back(path);
      continue;
    }
    TPeruseDir scanner("*", "*", "*", false, true, faAnyFile);
    std::unique_ptr<TMySearchRecList> list(scanner.ListofAllFilesIn(path));
    std::vector<std::string> inFolder;
    for (int32_t i = 0; list && i < list->Count(); ++i)
      inFolder.push_back(IncludeTrailingPathDelimiter(path) + list->GetAMySearchRec(i).Name);
    std::sort(inFolder.begin(), inFolder.end());
    if (inFolder.empty()) std::cerr << "kestrel identify: " << path << ": no file in the folder\n";
    files.insert(files.end(), inFolder.begin(), inFolder.end());
  }
  return files;
}

int Run(const Args &args) {
  args.RefuseSingleDash();
  if (!args.Unknown({"json", "tool"}).empty())
    throw UsageError{"unknown option " + args.Unknown({"json", "tool"}).front()};
  if (args.Positional().empty()) throw UsageError{"no file given"};
  const std::optional<tool_type> given = ToolFromName(args.Value("tool"));
  SetCurrentTool();
  const tool_type running = current_tool_var;
  const bool json = args.Has("json");
  int rc = 0;
  if (json) std::cout << "[";
  bool first = true;
  for (const std::string &file : FilesOf(args.Positional())) {
    if (!FileExists(file)) {
      std::cerr << "kestrel identify: " << file << ": no such file\n";
      rc = 1;
      continue;
    }
    const Verdict v = Judge(file, given);
    current_tool_var = running;
    if (json) {
      std::cout << (first ? "\n  " : ",\n  ") << Json(file, v);
      first = false;
    } else {
      std::cout << Describe(file, v) << "\n";
    }
  }
  if (json) std::cout << "\n]\n";
  return rc;
}

CommandRegistration reg({"identify",
                         "say what stored list of the suite each file holds",
                         "identify [--tool NAME] [--json] FILE|FOLDER...\n"
                         "  Reads each file's head: its list kind, owning tool, default\n"
                         "  extension, and whether it is a current, older 32-bit, oldest-format\n"
                         "  file or a batch archive. Without --tool a file is judged as the tool\n"
                         "  that owns its kind. A folder stands for the files directly in it.",
                         {"tool"},
                         Run});

} // namespace
} // namespace kestrel::cli
