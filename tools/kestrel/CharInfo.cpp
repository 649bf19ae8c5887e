// The registry of field sources of `kestrel char`.
#include "CharInfo.h"

#include <algorithm>
#include <utility>

#include "Cli.h"

namespace kestrel::cli {
namespace {

std::vector<std::pair<int, CharFieldSource>> &Sources() {
  static std::vector<std::pair<int, CharFieldSource>> sources;
  return sources;
}

} // namespace

CharFieldRegistration::CharFieldRegistration(int rank, CharFieldSource source) {
  auto &sources = Sources();
  auto at = std::upper_bound(sources.begin(), sources.end(), rank,
                             [](int r, const auto &entry) { return r < entry.first; });
  sources.insert(at, {rank, source});
}

std::vector<CharField> CharFieldsOf(UCS4 code) {
  std::vector<CharField> fields;
  for (const auto &[rank, source] : Sources())
    source(code, fields);
  return fields;
}

std::string JsonStringArray(const std::vector<std::string> &items) {
  std::string out = "[";
  for (size_t i = 0; i < items.size(); ++i)
    out += (i ? "," : "") + JsonString(items[i]);
  return out + "]";
}

std::string JoinWords(const std::vector<std::string> &items) {
  std::string out;
  for (const std::string &item : items)
    out += (out.empty() ? "" : " ") + item;
  return out;
}

} // namespace kestrel::cli
