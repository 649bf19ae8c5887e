// ucdgen UNICODEDATA OUTDIR: writes TYPE.bin, CASE.bin, DECOMPOSE.bin,
// COMBINE.bin and NUMBERS.bin into OUTDIR (kestrel/unicode/data).
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "UcdGen.h"

namespace {

// Writes beside the target, then renames, so that a failed run leaves the
// previous table in place and never a partial one.
void WriteTable(const std::string &dir, const std::string &name, const std::string &bytes) {
  std::string target = dir + "/" + name + ".bin", temp = target + ".tmp";
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), std::streamsize(bytes.size()));
    out.close();
    if (!out) {
      std::remove(temp.c_str());
      throw std::runtime_error("cannot write " + temp);
    }
  }
  if (std::rename(temp.c_str(), target.c_str()) != 0) {
    std::remove(temp.c_str());
    throw std::runtime_error("cannot replace " + target);
  }
  std::cout << target << ": " << bytes.size() << " bytes\n";
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::cerr << "usage: ucdgen UnicodeData.txt OUTDIR\n";
    return 2;
  }
  try {
    std::ifstream in(argv[1], std::ios::binary);
    if (!in) throw std::runtime_error(std::string("cannot open ") + argv[1]);
    kestrel::ucdgen::GeneratedTables t = kestrel::ucdgen::GenerateTables(in);
    WriteTable(argv[2], "TYPE", t.type);
    WriteTable(argv[2], "CASE", t.caseMap);
    WriteTable(argv[2], "DECOMPOSE", t.decompose);
    WriteTable(argv[2], "COMBINE", t.combine);
    WriteTable(argv[2], "NUMBERS", t.numbers);
  } catch (const std::exception &e) {
    std::cerr << "ucdgen: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
