// What the reader and the table builders of ucdgen share: the property
// numbers of the "TYPE" table and the parsing of fields.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel::ucdgen {

constexpr uint32_t kMaxCode = 0x10FFFF;

// Property indexes of the "TYPE" table.
// clang-format off
enum : int {
  kMn = 0, kMc, kMe, kNd, kNl, kNo, kZs, kZl, kZp, kCc, kCf, kCs, kCo, kCn, kLu, kLl, kLt, kLm,
  kLo, kPc, kPd, kPs, kPe, kPo, kSm, kSc, kSk, kSo, kL, kR, kEN, kES, kET, kAN, kCS, kB, kS,
  kWS, kON, kComposite, kNonBreaking, kSymmetric, kHexDigit, kQuotationMark, kMirroring,
  kSpaceControls, kDefined, kPi, kPf, kPropertyCount
};
// clang-format on

// The property number of a general category (Pi and Pf included) or of a
// bidirectional class; -1 for an unknown label.
int CategoryIndex(const std::string &label);
int BidiIndex(const std::string &bidi);

// A code point in hexadecimal; raises UcdError naming `where`.
uint32_t ParseHex(const std::string &text, const std::string &where);
std::vector<std::string> SplitFields(const std::string &line, char sep);
std::vector<uint32_t> ParseCodeList(const std::string &text, const std::string &where);

} // namespace kestrel::ucdgen
