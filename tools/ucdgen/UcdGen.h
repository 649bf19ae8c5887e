// The generator of the five character tables ("TYPE", "CASE", "DECOMPOSE",
// "COMBINE", "NUMBERS") from UnicodeData.txt of the Unicode Character
// Database 3.0; the `ucdgen` tool and the regeneration test share it.
//
// The tables are written in their stored form: a byte-order mark FF FE, six
// bytes of counts, then little-endian data. The rules are the library's own,
// with its deliberate departures from the published data (ranges of the data
// file that are expanded or not, private-use rows, the surrogate and
// private-use blocks of the bidirectional class L, marks without a class).
#pragma once

#include <cstdint>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrel::ucdgen {

struct GeneratedTables {
  std::string type, caseMap, decompose, combine, numbers;
};

// One line of UnicodeData.txt, the fields the tables need.
struct UcdRecord {
  uint32_t code = 0;
  std::string name, category, bidi, decomposition, numeric, upper, lower, title;
  int combiningClass = 0;
};

// Raised for input that is not UnicodeData.txt of the expected shape.
struct UcdError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Reads UnicodeData.txt. Paired "First>"/"Last>" lines are kept as two records
// whose names say so; the table builders decide what a pair covers.
std::vector<UcdRecord> ReadUnicodeData(std::istream &in);

// Each table from the records.
std::string BuildTypeTable(const std::vector<UcdRecord> &records);
std::string BuildCaseTable(const std::vector<UcdRecord> &records);
std::string BuildDecompositionTable(const std::vector<UcdRecord> &records);
std::string BuildCombiningTable(const std::vector<UcdRecord> &records);
std::string BuildNumberTable(const std::vector<UcdRecord> &records);

// All five tables from the text of UnicodeData.txt.
GeneratedTables GenerateTables(std::istream &unicodeData);

} // namespace kestrel::ucdgen
