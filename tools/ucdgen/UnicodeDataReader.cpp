// Reading UnicodeData.txt into records, refusing input of another shape.
#include <map>

#include "Properties.h"
#include "UcdGen.h"

namespace kestrel::ucdgen {

namespace {
const char *const kCategoryLabels[] = {"Mn", "Mc", "Me", "Nd", "Nl", "No", "Zs", "Zl", "Zp", "Cc",
                                       "Cf", "Cs", "Co", "Cn", "Lu", "Ll", "Lt", "Lm", "Lo", "Pc",
                                       "Pd", "Ps", "Pe", "Po", "Sm", "Sc", "Sk", "So"};

} // namespace

int CategoryIndex(const std::string &label) {
  if (label == "Pi") return kPi;
  if (label == "Pf") return kPf;
  for (int i = 0; i < 28; ++i)
    if (label == kCategoryLabels[i]) return i;
  return -1;
}

int BidiIndex(const std::string &bidi) {
  static const std::map<std::string, int> map = {
      {"L", kL},    {"R", kR},    {"AL", kR},   {"EN", kEN},  {"ES", kES},
      {"ET", kET},  {"AN", kAN},  {"CS", kCS},  {"B", kB},    {"S", kS},
      {"WS", kWS},  {"ON", kON},  {"BN", kON},  {"NSM", kON}, {"LRE", kON},
      {"LRO", kON}, {"RLE", kON}, {"RLO", kON}, {"PDF", kON}};
  auto it = map.find(bidi);
  return it == map.end() ? -1 : it->second;
}

uint32_t ParseHex(const std::string &text, const std::string &where) {
  if (text.empty() || text.size() > 6) throw UcdError("bad code point '" + text + "' in " + where);
  uint32_t v = 0;
  for (char c : text) {
    int d = (c >= '0' && c <= '9')   ? c - '0'
            : (c >= 'A' && c <= 'F') ? c - 'A' + 10
            : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                                     : -1;
    if (d < 0) throw UcdError("bad code point '" + text + "' in " + where);
    v = v * 16 + uint32_t(d);
  }
  if (v > kMaxCode) throw UcdError("code point '" + text + "' out of range in " + where);
  return v;
}

std::vector<std::string> SplitFields(const std::string &line, char sep) {
  std::vector<std::string> fields;
  size_t start = 0;
  for (;;) {
    size_t end = line.find(sep, start);
    fields.push_back(line.substr(start, end == std::string::npos ? end : end - start));
    if (end == std::string::npos) return fields;
    start = end + 1;
  }
}

std::vector<uint32_t> ParseCodeList(const std::string &text, const std::string &where) {
  std::vector<uint32_t> codes;
  for (const std::string &part : SplitFields(text, ' '))
    if (!part.empty()) codes.push_back(ParseHex(part, where));
  return codes;
}

std::vector<UcdRecord> ReadUnicodeData(std::istream &in) {
  std::vector<UcdRecord> records;
  std::string line;
  int lineNo = 0;
  uint32_t previous = 0;
  while (std::getline(in, line)) {
    ++lineNo;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    std::vector<std::string> f = SplitFields(line, ';');
    std::string where = "line " + std::to_string(lineNo);
    if (f.size() != 15)
      throw UcdError(where + " has " + std::to_string(f.size()) + " fields, not 15");
    UcdRecord r;
    r.code = ParseHex(f[0], where);
    if (!records.empty() && r.code <= previous)
      throw UcdError(where + " is not in ascending order");
    previous = r.code;
    r.name = f[1];
    r.category = f[2];
    if (CategoryIndex(r.category) < 0 && r.category != "Cs" && r.category != "Co")
      throw UcdError(where + " has an unknown category '" + r.category + "'");
    try {
      r.combiningClass = std::stoi(f[3]);
    } catch (const std::exception &) {
      throw UcdError(where + " has a bad combining class '" + f[3] + "'");
    }
    if (r.combiningClass < 0 || r.combiningClass > 255)
      throw UcdError(where + " has a bad combining class '" + f[3] + "'");
    r.bidi = f[4];
    if (BidiIndex(r.bidi) < 0)
      throw UcdError(where + " has an unknown bidirectional class '" + r.bidi + "'");
    r.decomposition = f[5];
    r.numeric = f[8];
    r.upper = f[12];
    r.lower = f[13];
    r.title = f[14];
    records.push_back(std::move(r));
  }
  if (records.empty()) throw UcdError("no character records in the input");
  return records;
}

} // namespace kestrel::ucdgen
