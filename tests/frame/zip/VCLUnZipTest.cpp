#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/zip/VCLUnZip.h>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"

using namespace kestrel;
using kestrel::test::LocalTime;
using kestrel::test::ReadFileBytes;
using kestrel::test::TempDir;
using kestrel::test::WriteZip;
namespace fs = std::filesystem;

namespace {

std::string Repeat(const std::string &s, int n) {
  std::string r;
  for (int i = 0; i < n; ++i)
    r += s;
  return r;
}

struct Fixture {
  TempDir dir;
  std::string zip = dir / "b.zip";
  Fixture() {
    WriteZip(zip,
             {{"a.txt", "first member", LocalTime(2004, 7, 15, 13, 45, 30), false, 0x21},
              {"sub/c.txt", Repeat("compressible text ", 200), LocalTime(1999, 12, 31, 23, 59, 58)},
              {"sub/", ""},
              {"deep/er/d.txt", "", 0, true}},
             "Marlow Batch file .lst");
  }
};

} // namespace

TEST(TVCLUnZip, ReadsTheDirectoryAndReportsEachEntry) {
  Fixture f;
  TVCLUnZip z(nullptr);
  std::vector<std::pair<int, int>> seen;
  auto handler = [&](TObject *sender, int32_t i, int32_t n) {
    EXPECT_EQ(sender, &z);
    seen.emplace_back(i, n);
  };
  z.OnEntryRead = TUZEntryReadEvent::Of(&handler);
  z.SetZipName(f.zip);
  EXPECT_EQ(z.GetZipName(), f.zip);
  EXPECT_EQ(z.GetCount(), 0); // nothing before ReadZip
  z.ReadZip();
  ASSERT_EQ(z.GetCount(), 4);
  EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{0, 4}, {1, 4}, {2, 4}, {3, 4}}));
  EXPECT_EQ(z.GetZipComment(), "Marlow Batch file .lst");
  struct Row {
    const char *path, *file;
    int64_t size;
  } rows[] = {
      {"", "a.txt", 12}, {"sub/", "c.txt", 18 * 200}, {"sub/", "", 0}, {"deep/er/", "d.txt", 0}};
  for (int i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(z.GetPathname(i), rows[i].path);
    EXPECT_EQ(z.GetFilename(i), rows[i].file);
    EXPECT_EQ(z.GetUnCompressedSize(i), rows[i].size);
  }
  EXPECT_LT(z.GetCompressedSize(1), z.GetUnCompressedSize(1));
  EXPECT_DOUBLE_EQ(z.GetDateTime(0), EncodeDateTime(2004, 7, 15, 13, 45, 30, 0));
  EXPECT_DOUBLE_EQ(z.GetDateTime(1), EncodeDateTime(1999, 12, 31, 23, 59, 58, 0));
  EXPECT_EQ(z.GetExternalFileAttributes(0), 0x21); // the stored bits
  EXPECT_FALSE(z.GetIsEncrypted(0));
  EXPECT_THROW(z.GetFilename(4), EListError);
  EXPECT_THROW(z.GetPathname(-1), EListError);
  EXPECT_THROW(z.SetSelected(9, true), EListError);
}

TEST(TVCLUnZip, ReadZipRaisesOnFilesThatAreNoArchive) {
  TempDir dir;
  Fixture f;
  std::string good = ReadFileBytes(f.zip);

  std::string noEnd = good.substr(0, good.size() - 30); // directory end cut off
  std::string badDir = good;                            // central directory overwritten
  size_t cd = badDir.find(std::string("PK\x01\x02", 4));
  ASSERT_NE(cd, std::string::npos);
  for (size_t i = cd + 10; i < cd + 40 && i < badDir.size(); ++i)
    badDir[i] = '\xFF';
  std::string badLocal = good; // first local header no longer matches its directory entry
  badLocal[26] = '\x7F';

  struct Case {
    const char *name;
    std::string bytes;
  } cases[] = {{"empty.zip", ""},
               {"text.zip", "This is plain text, not an archive.\n"},
               {"cut.zip", noEnd},
               {"baddir.zip", badDir}};
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    dir.WriteFile(c.name, c.bytes);
    TVCLUnZip z(nullptr);
    z.SetZipName(dir / c.name);
    EXPECT_THROW(z.ReadZip(), EZipError);
    EXPECT_EQ(z.GetCount(), 0);
  }
  // A listing reads only the central directory; a member's local header
  // that disagrees with it stops the reading of members, with libzip's reason.
  dir.WriteFile("badlocal.zip", badLocal);
  TVCLUnZip local(nullptr);
  local.SetZipName(dir / "badlocal.zip");
  local.ReadZip();
  EXPECT_GT(local.GetCount(), 0);
  TMemoryStream out;
  for (int32_t i = 0; i < local.GetCount(); ++i) {
    if (local.GetFilename(i).empty()) continue; // a folder entry
    try {
      local.UnZipToStream(&out, i);
      ADD_FAILURE() << "member " << i << " of an inconsistent archive was read";
    } catch (const EZipError &e) {
      EXPECT_EQ(e.Reason, "Zip archive inconsistent") << e.Message();
    }
  }
  TVCLUnZip z(nullptr);
  z.SetZipName(dir / "missing.zip");
  EXPECT_THROW(z.ReadZip(), EZipError);
  z.SetZipName(dir.Path());
  EXPECT_THROW(z.ReadZip(), EZipError);
  try {
    z.SetZipName(dir / "text.zip");
    z.ReadZip();
  } catch (const EZipError &e) {
    EXPECT_NE(e.Message().find("text.zip"), std::string::npos) << e.Message();
  }
}

TEST(TVCLUnZip, AnEmptyArchiveHasNoMembers) {
  TempDir dir;
  dir.WriteFile("e.zip", kestrel::test::EmptyZipBytes("abc"));
  TVCLUnZip z(nullptr);
  z.SetZipName(dir / "e.zip");
  z.ReadZip();
  EXPECT_EQ(z.GetCount(), 0);
  EXPECT_EQ(z.GetZipComment(), "abc");
}

TEST(TVCLUnZip, UnpacksSelectedMembersWithOrWithoutTheirFolders) {
  Fixture f;
  TVCLUnZip z(nullptr);
  z.SetZipName(f.zip);
  z.ReadZip();
  z.ClearSelected();
  z.SetSelected(1, true);
  z.SetSelected(3, true);
  EXPECT_EQ(z.NumSelected(), 2);
  z.SetDestDir(f.dir / "out");
  EXPECT_EQ(z.UnZipSelected(), 2);
  EXPECT_EQ(ReadFileBytes(f.dir / "out/sub/c.txt"), Repeat("compressible text ", 200));
  EXPECT_TRUE(fs::exists(f.dir / "out/deep/er/d.txt"));
  EXPECT_FALSE(fs::exists(f.dir / "out/a.txt"));
  struct stat st;
  ASSERT_EQ(::stat((f.dir / "out/sub/c.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mtime, LocalTime(1999, 12, 31, 23, 59, 58)); // the member's date

  z.RecreateDirs = false;
  z.SetDestDir(f.dir / "flat");
  EXPECT_EQ(z.UnZipSelected(), 2);
  EXPECT_TRUE(fs::exists(f.dir / "flat/c.txt"));
  EXPECT_TRUE(fs::exists(f.dir / "flat/d.txt"));
  EXPECT_FALSE(fs::exists(f.dir / "flat/sub"));
  // Nothing but the two files: no temporary file is left behind.
  EXPECT_EQ(std::distance(fs::directory_iterator(f.dir / "flat"), fs::directory_iterator()), 2);
}

TEST(TVCLUnZip, NeedsAnArchiveAndADestination) {
  Fixture f;
  TVCLUnZip z(nullptr);
  EXPECT_THROW(z.UnZipSelected(), EZipError);
  z.SetZipName(f.zip);
  z.ReadZip();
  z.SetSelected(0, true);
  EXPECT_THROW(z.UnZipSelected(), EZipError); // no DestDir
  z.SetZipName(f.zip);                        // a new name forgets the directory
  EXPECT_EQ(z.GetCount(), 0);
}

TEST(TVCLUnZip, ExistingTargetsFollowTheOverwriteRule) {
  Fixture f;
  f.dir.WriteFile("out/a.txt", "old");
  struct Case {
    TUZOverwriteMode mode;
    bool hasHandler, answer;
    int expected;
    const char *content;
    int asked;
  } cases[] = {{TUZOverwriteMode::Prompt, false, false, 0, "old", 0},
               {TUZOverwriteMode::Prompt, true, false, 0, "old", 1},
               {TUZOverwriteMode::Never, true, true, 0, "old", 0},
               {TUZOverwriteMode::Prompt, true, true, 1, "first member", 1},
               {TUZOverwriteMode::Always, false, false, 1, "first member", 0}};
  for (const Case &c : cases) {
    f.dir.WriteFile("out/a.txt", "old");
    TVCLUnZip z(nullptr);
    z.SetZipName(f.zip);
    z.ReadZip();
    z.SetSelected(0, true);
    z.SetDestDir(f.dir / "out");
    z.OverwriteMode = c.mode;
    int asked = 0;
    auto handler = [&](TObject *, bool &overwrite, const std::string &name) {
      ++asked;
      EXPECT_FALSE(overwrite);
      EXPECT_EQ(name, "a.txt");
      overwrite = c.answer;
    };
    if (c.hasHandler) z.OnPromptForOverwrite = TUZOverwriteEvent::Of(&handler);
    EXPECT_EQ(z.UnZipSelected(), c.expected);
    EXPECT_EQ(ReadFileBytes(f.dir / "out/a.txt"), c.content);
    EXPECT_EQ(asked, c.asked);
  }
}

TEST(TVCLUnZip, StoredNamesNeverLeadOutsideTheDestination) {
  TempDir dir;
  std::string zip = dir / "evil.zip";
  WriteZip(zip, {{"../escape1.txt", "1"},
                 {"../../escape2.txt", "2"},
                 {"/abs/escape3.txt", "3"},
                 {"C:/escape4.txt", "4"},
                 {"ok/../../escape5.txt", "5"},
                 {"a\\..\\..\\escape6.txt", "6"}});
  for (bool recreate : {true, false}) {
    SCOPED_TRACE(recreate);
    std::string dest = dir / (recreate ? "in/deep" : "flat/deep");
    TVCLUnZip z(nullptr);
    z.SetZipName(zip);
    z.ReadZip();
    ASSERT_EQ(z.GetCount(), 6);
    EXPECT_EQ(z.GetPathname(0), "../");
    EXPECT_EQ(z.GetFilename(0), "escape1.txt");
    EXPECT_EQ(z.GetPathname(5), "a/../../"); // a backslash is a delimiter
    for (int i = 0; i < z.GetCount(); ++i)
      z.SetSelected(i, true);
    z.RecreateDirs = recreate;
    z.SetDestDir(dest);
    EXPECT_EQ(z.UnZipSelected(), 6);
    // Every file is below the destination, and nothing is anywhere else.
    int found = 0;
    for (const auto &e : fs::recursive_directory_iterator(dir.Path())) {
      if (!e.is_regular_file() || e.path() == zip) continue;
      std::string p = e.path().string();
      EXPECT_EQ(p.rfind(dest + "/", 0), 0u) << p;
      ++found;
    }
    EXPECT_EQ(found, 6);
    EXPECT_EQ(ReadFileBytes(dest + (recreate ? "/abs/escape3.txt" : "/escape3.txt")), "3");
    EXPECT_EQ(ReadFileBytes(dest + "/escape1.txt"), "1");
    fs::remove_all(dir / (recreate ? "in" : "flat"));
  }
}

TEST(TVCLUnZip, LinksInTheDestinationAreNotFollowed) {
  TempDir dir;
  std::string zip = dir / "l.zip";
  WriteZip(zip, {{"sub/x.txt", "x"}, {"y.txt", "new"}});
  fs::create_directories(dir / "dest");
  fs::create_directories(dir / "outside");
  dir.WriteFile("outside/y.txt", "outside");
  fs::create_directory_symlink(dir / "outside", dir / "dest/sub");
  fs::create_symlink(dir / "outside/y.txt", dir / "dest/y.txt");

  TVCLUnZip z(nullptr);
  z.SetZipName(zip);
  z.ReadZip();
  z.SetSelected(0, true);
  z.SetDestDir(dir / "dest");
  EXPECT_THROW(z.UnZipSelected(), EZipError); // sub is a link, not a folder to enter
  EXPECT_FALSE(fs::exists(dir / "outside/x.txt"));

  z.ClearSelected();
  z.SetSelected(1, true);
  z.OverwriteMode = TUZOverwriteMode::Always;
  EXPECT_EQ(z.UnZipSelected(), 1);
  // The link itself was replaced; the file it pointed to is untouched.
  EXPECT_FALSE(fs::is_symlink(dir / "dest/y.txt"));
  EXPECT_EQ(ReadFileBytes(dir / "dest/y.txt"), "new");
  EXPECT_EQ(ReadFileBytes(dir / "outside/y.txt"), "outside");
}

TEST(TVCLUnZip, DamagedMemberDataRaisesAndLeavesNoFile) {
  TempDir dir;
  std::string zip = dir / "crc.zip";
  std::string payload = Repeat("0123456789", 50);
  WriteZip(zip, {{"p.txt", payload, 0, true}}); // stored, so the bytes are in the file
  std::string bytes = ReadFileBytes(zip);
  size_t at = bytes.find(payload);
  ASSERT_NE(at, std::string::npos);
  bytes[at + 100] = 'X'; // the directory is intact, the data no longer fits its CRC
  dir.WriteFile("crc.zip", bytes);

  TVCLUnZip z(nullptr);
  z.SetZipName(zip);
  z.ReadZip();
  z.SetSelected(0, true);
  z.SetDestDir(dir / "out");
  EXPECT_THROW(z.UnZipSelected(), EZipError);
  EXPECT_TRUE(fs::is_empty(dir / "out"));
}

TEST(TVCLUnZip, AnOwnerFreesItsReader) {
  TComponent owner(nullptr);
  auto *z = new TVCLUnZip(&owner);
  EXPECT_EQ(z->Owner(), &owner);
  EXPECT_EQ(owner.ComponentCount(), 1);
  delete z; // leaves the owner's list
  EXPECT_EQ(owner.ComponentCount(), 0);
  new TVCLUnZip(&owner); // freed with the owner (the leak check would see it otherwise)
}
