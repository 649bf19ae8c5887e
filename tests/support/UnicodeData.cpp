#include "UnicodeData.h"

#include <fstream>
#include <sstream>

#include "TestSupport.h"

namespace kestrel::test {
namespace {

std::vector<std::string> Fields(const std::string &line) {
  std::vector<std::string> fields;
  std::string field;
  std::istringstream in(line);
  while (std::getline(in, field, ';'))
    fields.push_back(field);
  if (!line.empty() && line.back() == ';') fields.emplace_back();
  return fields;
}

uint32_t Hex(const std::string &s) {
  return s.empty() ? 0 : std::stoul(s, nullptr, 16);
}

std::map<uint32_t, UnicodeDataRow> Read() {
  std::map<uint32_t, UnicodeDataRow> rows;
  std::string dir = SharedDataDir();
  if (dir.empty()) return rows;
  std::ifstream file(dir + "/ucd-3.0.0/UnicodeData.txt");
  std::string line;
  while (std::getline(file, line)) {
    std::vector<std::string> f = Fields(line);
    if (f.size() < 15) continue;
    UnicodeDataRow row;
    row.category = f[2];
    row.combiningClass = static_cast<uint32_t>(std::stoul(f[3]));
    std::istringstream decomposition(f[5]);
    std::string element;
    while (decomposition >> element) {
      if (element.front() == '<')
        row.compatibility = true;
      else
        row.decomposition.push_back(Hex(element));
    }
    row.upper = Hex(f[12]);
    row.lower = Hex(f[13]);
    row.title = Hex(f[14]);
    rows[Hex(f[0])] = row;
  }
  return rows;
}

} // namespace

const std::map<uint32_t, UnicodeDataRow> &UnicodeDataRows() {
  static const std::map<uint32_t, UnicodeDataRow> rows = Read();
  return rows;
}

} // namespace kestrel::test
