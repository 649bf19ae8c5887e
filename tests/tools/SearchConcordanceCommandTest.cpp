// kestrel search as a concordance tool: sorted lines, the export formats,
// word contexts, counts.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace {

using Result = kestrel::test::ShellRun;

Result Search(const std::string &args) {
  return kestrel::test::RunKestrelLine("search " + args);
}

// The given TSV column of every record after the header, joined by blanks.
std::string Column(const std::string &tsv, size_t column) {
  std::istringstream lines(tsv);
  std::string line, out;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::string cell;
    for (size_t i = 0; i <= column && std::getline(fields, cell, '\t'); ++i) {
    }
    out += (out.empty() ? "" : " ") + cell;
  }
  return out;
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

TEST(SearchConcordance, LinesSortByTheChosenWordUnderTheLocale) {
  kestrel::test::TempDir dir;
  dir.WriteFile("a.txt", "one kestrel zebra\nthe kestrel \xC3\xA4pfel\n"
                         "a big kestrel apfel\nthe kestrel Zebra\n");
  const std::string f = dir / "a.txt";
  struct Case {
    std::string options, lines; // the line numbers, in the order printed
  };
  const Case cases[] = {
      {"", "1 2 3 4"},
      {"--sort right --locale de_DE", "3 2 1 4"}, // apfel äpfel zebra Zebra
      {"--sort right --locale sv_SE", "3 1 4 2"}, // Swedish ä comes after z
      {"--sort right:1 --locale de_DE", "3 2 1 4"},
      {"--sort left", "3 1 2 4"},                  // big one the the
      {"--sort left:2 --locale de_DE", "1 3 4 2"}, // "" a apfel zebra: across lines
      {"--sort match", "1 2 3 4"},                 // all equal: corpus order
      {"--sort right:2", "4 2 1 3"},               // "" a the the
  };
  for (const Case &c : cases) {
    const Result r = Search("--format tsv " + c.options + " kestrel " + f);
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(Column(r.out, 3), c.lines) << c.options << "\n" << r.out;
  }
}

TEST(SearchConcordance, FormatsCarryPlaceContextsAndEncoding) {
  kestrel::test::TempDir dir;
  dir.WriteFile("q.txt", "she said \"kestrel, now\", and left\n");
  const std::string f = dir / "q.txt";
  struct Case {
    std::string options, expected;
  };
  const Case cases[] = {
      {"--format csv --width 5", "file,start,stop,line,column,match,encoding,left,right\r\n"},
      {"--format csv --width 5", ",10,17,1,11,kestrel,UTF-8,\"aid \"\"\",\", now\"\r\n"},
      {"--format tsv --width 5", "\t10\t17\t1\t11\tkestrel\tUTF-8\taid \"\t, now\n"},
      {"--json --width 5", "\"start\": 10, \"stop\": 17, \"line\": 1, \"column\": 11, \"match\": "
                           "\"kestrel\", \"encoding\": \"UTF-8\", \"left\": \"aid \\\"\", "
                           "\"right\": \", now\"}"},
      {"--format json --words 1", "\"left\": \"said \\\"\", \"right\": \", now\""},
      {"--format tsv --words 2", "\tkestrel\tUTF-8\tshe said \"\t, now\", and\n"},
      {"--words 1", "said \"  kestrel  , now\n"},
  };
  for (const Case &c : cases) {
    const Result r = Search(c.options + " kestrel " + f);
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_TRUE(Has(r.out, c.expected)) << c.options << "\n" << r.out;
  }
}

TEST(SearchConcordance, CountsPerFileAndInTotal) {
  kestrel::test::TempDir dir;
  dir.WriteFile("a.txt", "kestrel kestrel kestrel\n");
  dir.WriteFile("b.txt", "falcon\n");
  dir.WriteFile("c.txt", "Kestrel\n");
  const std::string files = dir / "a.txt" + " " + dir / "b.txt" + " " + dir / "c.txt";
  Result r = Search("--count --format tsv kestrel " + files);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(Column(r.out, 1), "3 0 1 4") << r.out;
  EXPECT_TRUE(Has(r.out, "\n(total)\t4\n")) << r.out;
  EXPECT_EQ(Column(Search("--count --max-count 2 --format tsv kestrel " + files).out, 1),
            "2 0 1 3");
  r = Search("--count --format csv kestrel " + files);
  EXPECT_TRUE(Has(r.out, "\r\n(total),4\r\n")) << r.out;
  r = Search("--count kestrel " + files);
  EXPECT_TRUE(Has(r.out, "4 matches in 2 of 3 files")) << r.out;
  r = Search("--count --json kestrel " + files);
  EXPECT_TRUE(Has(r.out, "\"matches\": 3, ")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"total\": 4, \"files_with_matches\": 2}")) << r.out;
  r = Search("--max-count 1 --format tsv kestrel " + files);
  EXPECT_EQ(Column(r.out, 1), "0 0") << r.out;
  EXPECT_EQ(Search("--count falcon " + dir / "a.txt").status, 1);
}

TEST(SearchConcordance, BadOptionsAreRefused) {
  kestrel::test::TempDir dir;
  dir.WriteFile("a.txt", "kestrel\n");
  for (const char *bad : {"--sort middle", "--sort match:2", "--sort left:0", "--sort left:x",
                          "--words 0", "--width 5 --words 2", "--format xml", "--json --format csv",
                          "--max-count 0", "--count --sort left", "--locale 0x7fff"}) {
    const Result r = Search(std::string(bad) + " kestrel " + dir / "a.txt");
    EXPECT_EQ(r.status, 2) << bad << "\n" << r.out;
    EXPECT_TRUE(Has(r.out, "kestrel search: ")) << bad;
  }
}

} // namespace
