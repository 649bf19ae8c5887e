// The four tests on stored files, over real files and real archives.
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

#include <kestrel/frame/host/Host.h>
#include <kestrel/vocabulary/Vocabulary.h>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"

namespace kestrel {
namespace {

using enum list_type;
using test::TempDir;
using test::ToolGuard;

// A 32-bit head with its number and signature, then `extra` bytes of data.
std::string Head32(int32_t number, std::string_view signature, size_t extra = 1) {
  TCheckSignature h{};
  h.signature_number = number;
  std::memset(h.header_reserved, 0xAB, sizeof h.header_reserved);
  h.signature = signature;
  std::string bytes(reinterpret_cast<const char *>(&h), sizeof h);
  return bytes + std::string(extra, 'd');
}

// An older head: count, text (after a 0 when zeroAt1), padding to 41, data.
std::string OlderHead(uint8_t count, std::string_view text, bool zeroAt1 = false,
                      size_t extra = 1) {
  std::string bytes(1, static_cast<char>(count));
  if (zeroAt1) bytes.push_back('\0');
  bytes.append(text);
  bytes.resize(41, '\0');
  return bytes + std::string(extra, 'd');
}

struct Answer {
  bool result;
  list_type kind;
  int32_t count;
  bool operator==(const Answer &) const = default;
};

void PrintTo(const Answer &a, std::ostream *os) {
  *os << a.result << " kind " << int(a.kind) << " count " << a.count;
}

template <typename Test> Answer Ask(const std::string &file, Test test) {
  TMKStored_File_rec rec;
  rec.stored_file_name = file;
  rec.reserved = 1234;
  rec.batch_entry_count = 99;
  rec.stored_list_type = spare9;
  const bool result = test(rec);
  EXPECT_EQ(rec.reserved, 1234); // the tools' own field stays as it was
  return {result, rec.stored_list_type, rec.batch_entry_count};
}

TEST(StoredFile32, NumbersSignaturesAndSizesAgainstTheRunningTool) {
  struct Case {
    tool_type tool;
    int32_t number;
    const char *signature;
    size_t extra; // bytes after the head
    bool was, is;
    list_type wasKind, isKind;
  };
  using enum tool_type;
  const Case cases[] = {
      {tallyman, 37, "Word List32", 0, false, false, none_in_use, none_in_use}, // 57 bytes
      {tallyman, 37, "Word List32", 1, false, true, word_list, word_list},
      {tallyman, 34, "Concordance32", 1, false, false, none_in_use, none_in_use},
      {tallyman, 35, "Concordance32", 1, true, false, concordance_list, none_in_use},
      {tallyman, 38, "Concordance32", 1, false, false, none_in_use, none_in_use},
      {lineups, 36, "Concordance32", 1, false, true, concordance_list, concordance_list},
      {lineups, 37, "Concordance32", 1, false, false, none_in_use, none_in_use},
      // The older database head of today's number was, and is not; a head of
      // today's number that names nothing is recognised with no kind.
      {lineups, 36, "Salients Database (v. 2)32", 1, true, false, spare10, spare10},
      {lineups, 35, "Salients Database (v. 2)32", 1, false, false, spare10, none_in_use},
      {lineups, 36, "Nothing We Know32", 1, false, true, none_in_use, none_in_use},
  };
  TempDir dir;
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.signature) + " " + std::to_string(c.number) + " as " +
                 GetShortToolFilename(c.tool));
    ToolGuard tool(c.tool);
    dir.WriteFile("head", Head32(c.number, c.signature, c.extra));
    EXPECT_EQ(Ask(dir / "head", WasAMarlowick32BitFile), (Answer{c.was, c.wasKind, 0}));
    EXPECT_EQ(Ask(dir / "head", IsAMarlowick32BitFile), (Answer{c.is, c.isKind, 0}));
  }
}

TEST(StoredFileOlder, HeadsAndSizes) {
  TempDir dir;
  struct Case {
    const char *name;
    std::string bytes;
    bool result;
    list_type kind;
  };
  const Case cases[] = {
      {"plain", OlderHead(11, "Word Lister"), true, word_list},
      {"zero-at-1", OlderHead(12, "Concordancer", true), true, concordance_list},
      {"database", OlderHead(24, "Salients Database (v. 2)"), true, KW_database_list},
      {"cut-by-count", OlderHead(11, "Word ListerXYZ"), true, word_list},
      {"count-past-text", OlderHead(20, "Word Lister"), false, none_in_use},
      {"41-bytes", OlderHead(11, "Word Lister", false, 0), false, none_in_use},
      {"empty-head", OlderHead(0, ""), true, kw_cluster_list},
      {"unknown", OlderHead(7, "Strange"), false, none_in_use},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    dir.WriteFile(c.name, c.bytes);
    EXPECT_EQ(Ask(dir / c.name, IsAnOldMarlowickFile), (Answer{c.result, c.kind, 0}));
  }
}

TEST(StoredFileAny, MissingFileOrFolderIsFalseAndUnopenableFileRaises) {
  TempDir dir;
  for (auto test : {IsAnOldMarlowickFile, WasAMarlowick32BitFile, IsAMarlowick32BitFile}) {
    for (const std::string &name : {dir / "missing", dir.Path()}) {
      EXPECT_EQ(Ask(name, test), (Answer{false, none_in_use, 0})) << name;
    }
  }
  // A file held without sharing by another open can't be opened: that
  // failure is the caller's to see, and it leaves no handle behind.
  dir.WriteFile("held", Head32(36, "Word List32"));
  {
    TFileStream holder(dir / "held", fmOpenReadWrite | fmShareExclusive);
    for (auto test : {IsAnOldMarlowickFile, WasAMarlowick32BitFile, IsAMarlowick32BitFile}) {
      TMKStored_File_rec rec;
      rec.stored_file_name = dir / "held";
      EXPECT_THROW(test(rec), EFOpenError);
      EXPECT_EQ(rec.stored_list_type, none_in_use);
    }
  }
  ToolGuard tool(tool_type::lineups);
  TMKStored_File_rec rec;
  rec.stored_file_name = dir / "held";
  EXPECT_TRUE(IsAMarlowick32BitFile(rec)); // the tests closed their streams
}

TEST(BatchZip, CommentNamesTheKind) {
  TempDir dir;
  using test::WriteZip;
  struct Case {
    const char *name, *comment;
    bool result;
    list_type kind;
    int32_t count;
  };
  const Case cases[] = {
      {"cnc", "Marlow Batch file .cnc", true, concordance_list, 2},
      {"klk", "Marlow Batch file klk", true, link_list, 2},
      {"exact18", "Marlow Batch file ", false, none_in_use, 0},
      {"case", "marlow Batch file .cnc", false, none_in_use, 0},
      {"unknown-ext", "Marlow Batch file .xyz", true, none_in_use, 0},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = dir / (std::string(c.name) + ".zip");
    WriteZip(path, {{"one.cnc", "1"}, {"two.cnc", "2"}}, c.comment);
    EXPECT_EQ(Ask(path, IsABatchZipFileForListType), (Answer{c.result, c.kind, c.count}));
  }
}

TEST(BatchZip, EmptyArchiveAndForeignFiles) {
  TempDir dir;
  dir.WriteFile("empty.zip", test::EmptyZipBytes("Marlow Batch file .cnc"));
  EXPECT_EQ(Ask(dir / "empty.zip", IsABatchZipFileForListType), (Answer{false, none_in_use, 0}));
  // A file that is no archive: the reader's exception reaches the caller.
  dir.WriteFile("damaged.zip", std::string("PK\x03\x04", 4) + std::string(100, 'x'));
  TMKStored_File_rec rec;
  rec.stored_file_name = dir / "damaged.zip";
  EXPECT_THROW(IsABatchZipFileForListType(rec), Exception);
  EXPECT_EQ(rec.stored_list_type, none_in_use);
  rec.stored_file_name = dir / "missing.zip";
  EXPECT_THROW(IsABatchZipFileForListType(rec), Exception);
}

} // namespace
} // namespace kestrel
