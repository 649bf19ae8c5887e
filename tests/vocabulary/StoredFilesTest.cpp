// Stored heads by signature, and names of files within archives.
#include <gtest/gtest.h>

#include <string>

#include "support/TestSupport.h"
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum list_type;

TCheckSignature Head(std::string_view signature, int32_t number = 36) {
  TCheckSignature h{};
  h.signature_number = number;
  h.signature = signature;
  return h;
}

TEST(DiskFileType, FindsTheKindBySignature) {
  struct Case {
    std::string_view signature;
    list_type expected;
  };
  const Case cases[] = {
      {"Word List32", word_list},
      {"Concordance32", concordance_list},
      {" Text List32", text_list},
      {"Salients ClusterList32", kw_cluster_list},
      {"Notes", notes_window},
      {"spare3", source_text_window},
      {"spare9", spare9},
      {"spare10", none_in_use}, // the last row takes no part
      {"Salients Database (v. 2)32", spare10},
      {"word list32", none_in_use}, // case matters
      {"Word List", none_in_use},   // the 32 is part of the signature
      {"Text List32", none_in_use}, // the blank is too
      {"", none_in_use},            // the empty row of none_in_use is never reached
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.signature));
    EXPECT_EQ(DiskFileType(Head(c.signature)), c.expected);
  }
}

TEST(DiskFileType, LengthByteBeyondTheFieldIsCut) {
  TCheckSignature h = Head("Word List32");
  h.signature.len = 200; // hostile length: only the 40 characters count
  EXPECT_EQ(h.signature.view().size(), 40u);
  EXPECT_EQ(DiskFileType(h), none_in_use);
}

TEST(ZipNames, ExtensionTest) {
  EXPECT_TRUE(IsAZipFile("/corpus/b.zip"));
  EXPECT_TRUE(IsAZipFile("/corpus/B.ZIP"));
  EXPECT_FALSE(IsAZipFile("/corpus/b.zipx"));
  EXPECT_FALSE(IsAZipFile("/corpus.zip/b"));
  EXPECT_TRUE(IsAZipFile(".zip"));
}

TEST(ZipNames, FullNameAndMemberName) {
  const std::string name = "/data/Old.ZIP/sub/inner.zip/c.txt";
  EXPECT_EQ(ZipFileFullFileName(name), "/data/Old.ZIP");
  EXPECT_EQ(ZipFileWantedFileNameWithin(name), "sub/inner.zip/c.txt");
  EXPECT_EQ(ZipFileFullFileName("/data/plain.txt"), "");
  EXPECT_EQ(ZipFileWantedFileNameWithin("/data/plain.txt"), "");
  // ".zip" without a delimiter after it is no archive in the middle of a name.
  EXPECT_EQ(ZipFileFullFileName("/data/a.zip"), "");
  EXPECT_EQ(ZipFileWantedFileNameWithin("/data/a.zip/"), "");
  EXPECT_EQ(ZipFileFullFileName("/data/a.zip/"), "/data/a.zip");
}

TEST(ZipNames, WithinAZipFileOnlyWhenNoSuchFileExists) {
  test::TempDir dir;
  EXPECT_TRUE(IsWithinAZipFile(dir / "b.zip/c.txt"));
  EXPECT_TRUE(IsWithinAZipFile(dir / "B.Zip/c.txt"));
  EXPECT_FALSE(IsWithinAZipFile(dir / "b.zipped/c.txt"));
  // A real folder named like an archive, holding a real file.
  ASSERT_TRUE(CreateDir(dir / "real.zip"));
  dir.WriteFile("real.zip/c.txt", "text");
  EXPECT_FALSE(IsWithinAZipFile(dir / "real.zip/c.txt"));
  EXPECT_TRUE(IsWithinAZipFile(dir / "real.zip/missing.txt"));
}

} // namespace
} // namespace kestrel
