#include "OutputFormats.h"

#include <algorithm>

namespace kestrel::cli {

OutputFormat ChooseFormat(const Args &args) {
  const std::string name = args.Value("format", args.Has("json") ? "json" : "text");
  if (args.Has("json") && name != "json")
    throw UsageError{"--json and --format " + name + " disagree"};
  if (name == "text") return OutputFormat::Text;
  if (name == "tsv") return OutputFormat::Tsv;
  if (name == "csv") return OutputFormat::Csv;
  if (name == "json") return OutputFormat::Json;
  throw UsageError{"unknown format '" + name + "' (use text, tsv, csv or json)"};
}

std::string CsvField(const std::string &utf8) {
  if (utf8.find_first_of(",\"\r\n") == std::string::npos) return utf8;
  std::string out = "\"";
  for (char c : utf8) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

std::string TsvField(const std::string &utf8) {
  std::string out = utf8;
  for (char &c : out)
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  return out;
}

int TerminalColumns(uint32_t c) {
  if (c < 0x20) return 1;
  if ((c >= 0x0300 && c <= 0x036F) || (c >= 0x20D0 && c <= 0x20FF) || c == 0x200B) return 0;
  if ((c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) ||
      (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
      (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
      (c >= 0xFFE0 && c <= 0xFFE6) || c >= 0x20000)
    return 2;
  return 1;
}

size_t DisplayWidth(const std::string &utf8) {
  size_t columns = 0;
  for (size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    uint32_t c = length == 1 ? lead : lead & (0x3F >> (length - 1));
    for (size_t k = 1; k < length && i + k < utf8.size(); ++k)
      c = (c << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
    columns += static_cast<size_t>(TerminalColumns(c));
    i += length;
  }
  return columns;
}

TableWriter::TableWriter(OutputFormat format, std::vector<Column> columns, std::FILE *out,
                         bool endLine)
    : format_(format), columns_(std::move(columns)), out_(out), endLine_(endLine) {
  if (format_ == OutputFormat::Json) std::fputs("[", out_);
  if (format_ == OutputFormat::Tsv || format_ == OutputFormat::Csv) {
    std::vector<std::string> names;
    for (const Column &c : columns_)
      names.push_back(c.name);
    Row(names);
  }
}

void TableWriter::Row(const std::vector<std::string> &cells) {
  switch (format_) {
  case OutputFormat::Text:
    held_.push_back(cells);
    return;
  case OutputFormat::Tsv:
  case OutputFormat::Csv: {
    const bool csv = format_ == OutputFormat::Csv;
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i)
      line += (i ? (csv ? "," : "\t") : "") + (csv ? CsvField(cells[i]) : TsvField(cells[i]));
    // RFC 4180 ends records with CR LF.
    line += csv ? "\r\n" : "\n";
    std::fputs(line.c_str(), out_);
    return;
  }
  case OutputFormat::Json: {
    std::string record = first_ ? "\n  {" : ",\n  {";
    for (size_t i = 0; i < cells.size() && i < columns_.size(); ++i) {
      record += (i ? ", " : "") + JsonString(columns_[i].name) + ": ";
      record += columns_[i].numeric ? cells[i] : JsonString(cells[i]);
    }
    std::fputs((record + "}").c_str(), out_);
    first_ = false;
    return;
  }
  }
}

void TableWriter::Finish() {
  if (finished_) return;
  finished_ = true;
  if (format_ == OutputFormat::Json) {
    std::fputs(first_ ? "]" : "\n]", out_);
    if (endLine_) std::fputs("\n", out_);
  }
  if (format_ != OutputFormat::Text) return;
  std::vector<size_t> widths(columns_.size(), 0);
  for (size_t i = 0; i < columns_.size(); ++i)
    widths[i] = DisplayWidth(columns_[i].name);
  for (const auto &row : held_)
    for (size_t i = 0; i < row.size() && i < widths.size(); ++i)
      widths[i] = std::max(widths[i], DisplayWidth(row[i]));
  auto print = [&](const std::vector<std::string> &row) {
    std::string line;
    for (size_t i = 0; i < row.size() && i < widths.size(); ++i) {
      const std::string pad(widths[i] - DisplayWidth(row[i]), ' ');
      const bool last = i + 1 == row.size();
      line += i ? "  " : "";
      line += columns_[i].numeric ? pad + row[i] : row[i] + (last ? "" : pad);
    }
    std::fputs((line + "\n").c_str(), out_);
  };
  std::vector<std::string> names;
  for (const Column &c : columns_)
    names.push_back(c.name);
  print(names);
  for (const auto &row : held_)
    print(row);
  held_.clear();
}

} // namespace kestrel::cli
