// The texts that kestrel search reads from folders and ZIP archives: plain
// files and archive members found by the folder scanner, members brought out
// through the library's temporary-file route.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrel::cli {

// One text to search: a name to show and a way to get its bytes.
struct Input {
  std::string name;
  std::function<std::string()> load;
};

class MemberReader;

// Turns folder and archive paths into inputs; "-" is standard input; other
// paths stay plain files.
class SearchInputs {
public:
  // masks: the file masks, also used for archive members.
  SearchInputs(std::string masks, bool recursive);
  ~SearchInputs();
  void Add(const std::string &path, std::vector<Input> &inputs);

private:
  void AddFolder(const std::string &folder, std::vector<Input> &inputs);
  void AddArchive(const std::string &archive, std::vector<Input> &inputs);
  void NoteUnmatchedFolder(const std::string &folder) const;
  std::string masks_;
  bool recursive_;
  std::shared_ptr<MemberReader> members_;
};

} // namespace kestrel::cli
