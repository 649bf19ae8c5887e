// Output formats shared by the commands that print tables of results
// (search, words): aligned text for reading, and TSV, CSV or JSON for
// scripts.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Cli.h"

namespace kestrel::cli {

enum class OutputFormat : uint8_t { Text, Tsv, Csv, Json };

// --format text|tsv|csv|json, with --json as the short form of --format json.
OutputFormat ChooseFormat(const Args &args);

// A field quoted as RFC 4180 asks: in double quotes, with quotes doubled,
// when it holds a comma, a quote or a line break.
std::string CsvField(const std::string &utf8);
// A TSV field: tabs and line breaks would split the record; they become
// blanks.
std::string TsvField(const std::string &utf8);

struct Column {
  std::string name;
  bool numeric = false; // right-aligned as text, unquoted in JSON
};

// Writes rows of cells (UTF-8) in one of the formats. Text rows are held
// until Finish to align the columns; the other formats stream.
class TableWriter {
public:
  // endLine: whether Finish ends the output's last line (not so when the
  // JSON array is a member of an object the caller goes on to write).
  TableWriter(OutputFormat format, std::vector<Column> columns, std::FILE *out = stdout,
              bool endLine = true);
  void Row(const std::vector<std::string> &cells);
  void Finish();

private:
  OutputFormat format_;
  std::vector<Column> columns_;
  std::FILE *out_;
  std::vector<std::vector<std::string>> held_;
  bool first_ = true;
  bool finished_ = false;
  bool endLine_ = true;
};

// Columns a character takes on a terminal: 0 for combining marks, 2 for
// the wide East Asian ranges, 1 otherwise (controls show as one blank).
int TerminalColumns(uint32_t c);

// Columns that a UTF-8 string takes on a terminal.
size_t DisplayWidth(const std::string &utf8);

} // namespace kestrel::cli
