// The ZIP reader: the directory, selected members unpacked, damaged and
// hostile archives.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sys/stat.h>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/zip/VCLUnZip.h>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"

using namespace kestrel;
using kestrel::test::EntriesIn;
using kestrel::test::LocalTime;
using kestrel::test::ReadFileBytes;
using kestrel::test::TempDir;
using kestrel::test::WriteZip;
namespace fs = std::filesystem;

namespace {

// A reader of an archive, its directory read.
std::unique_ptr<TVCLUnZip> Opened(const std::string &zip) {
  auto z = std::make_unique<TVCLUnZip>(nullptr);
  z->SetZipName(zip);
  z->ReadZip();
  return z;
}

const std::string kCompressible = [] {
  std::string r;
  for (int i = 0; i < 200; ++i)
    r += "compressible text ";
  return r;
}();

struct Fixture {
  TempDir dir;
  std::string zip = dir / "b.zip";
  Fixture() {
    WriteZip(zip,
             {{"a.txt", "first member", LocalTime(2004, 7, 15, 13, 45, 30), false, 0x21},
              {"sub/c.txt", kCompressible, LocalTime(1999, 12, 31, 23, 59, 58)},
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
  z.SetZipName(f.zip); // a new name forgets the directory
  EXPECT_EQ(z.GetCount(), 0);

  f.dir.WriteFile("e.zip", kestrel::test::EmptyZipBytes("abc"));
  auto empty = Opened(f.dir / "e.zip");
  EXPECT_EQ(empty->GetCount(), 0);
  EXPECT_EQ(empty->GetZipComment(), "abc");
}

TEST(TVCLUnZip, ReadZipRaisesOnFilesThatAreNoArchive) {
  Fixture f;
  const TempDir &dir = f.dir;
  std::string good = ReadFileBytes(f.zip);
  std::string badDir = good; // central directory overwritten
  size_t cd = badDir.find(std::string("PK\x01\x02", 4));
  ASSERT_NE(cd, std::string::npos);
  for (size_t i = cd + 10; i < cd + 40 && i < badDir.size(); ++i)
    badDir[i] = '\xFF';
  const std::pair<const char *, std::string> cases[] = {
      {"empty.zip", ""},
      {"text.zip", "This is plain text, not an archive.\n"},
      {"cut.zip", good.substr(0, good.size() - 30)}, // directory end cut off
      {"baddir.zip", badDir}};
  for (const auto &[name, bytes] : cases) {
    dir.WriteFile(name, bytes);
    TVCLUnZip z(nullptr);
    z.SetZipName(dir / name);
    try {
      z.ReadZip();
      ADD_FAILURE() << name << " was read";
    } catch (const EZipError &e) {
      EXPECT_NE(e.Message().find(name), std::string::npos) << e.Message();
    }
    EXPECT_EQ(z.GetCount(), 0) << name;
  }
  TVCLUnZip z(nullptr);
  z.SetZipName(dir / "missing.zip");
  EXPECT_THROW(z.ReadZip(), EZipError);
  z.SetZipName(dir.Path());
  EXPECT_THROW(z.ReadZip(), EZipError);

  // A listing reads only the central directory; a member's local header
  // that disagrees with it stops the reading of members, with libzip's reason.
  std::string badLocal = good;
  badLocal[26] = '\x7F';
  dir.WriteFile("badlocal.zip", badLocal);
  auto local = Opened(dir / "badlocal.zip");
  EXPECT_GT(local->GetCount(), 0);
  TMemoryStream out;
  for (int32_t i = 0; i < local->GetCount(); ++i) {
    if (local->GetFilename(i).empty()) continue; // a folder entry
    try {
      local->UnZipToStream(&out, i);
      ADD_FAILURE() << "member " << i << " of an inconsistent archive was read";
    } catch (const EZipError &e) {
      EXPECT_EQ(e.Reason, "Zip archive inconsistent") << e.Message();
    }
  }
}

TEST(TVCLUnZip, UnpacksSelectedMembersWithOrWithoutTheirFolders) {
  Fixture f;
  TVCLUnZip none(nullptr);
  EXPECT_THROW(none.UnZipSelected(), EZipError); // no archive
  auto z = Opened(f.zip);
  z->SetSelected(0, true);
  EXPECT_THROW(z->UnZipSelected(), EZipError); // no DestDir
  z->ClearSelected();
  z->SetSelected(1, true);
  z->SetSelected(3, true);
  EXPECT_EQ(z->NumSelected(), 2);
  z->SetDestDir(f.dir / "out");
  EXPECT_EQ(z->UnZipSelected(), 2);
  EXPECT_EQ(ReadFileBytes(f.dir / "out/sub/c.txt"), kCompressible);
  EXPECT_TRUE(fs::exists(f.dir / "out/deep/er/d.txt"));
  EXPECT_FALSE(fs::exists(f.dir / "out/a.txt"));
  struct stat st;
  ASSERT_EQ(::stat((f.dir / "out/sub/c.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mtime, LocalTime(1999, 12, 31, 23, 59, 58)); // the member's date

  z->RecreateDirs = false;
  z->SetDestDir(f.dir / "flat");
  EXPECT_EQ(z->UnZipSelected(), 2);
  EXPECT_TRUE(fs::exists(f.dir / "flat/c.txt"));
  EXPECT_TRUE(fs::exists(f.dir / "flat/d.txt"));
  EXPECT_EQ(EntriesIn(f.dir / "flat"), 2u); // no folder, no temporary file left behind
}

TEST(TVCLUnZip, ExistingTargetsFollowTheOverwriteRule) {
  Fixture f;
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
    auto z = Opened(f.zip);
    z->SetSelected(0, true);
    z->SetDestDir(f.dir / "out");
    z->OverwriteMode = c.mode;
    int asked = 0;
    auto handler = [&](TObject *, bool &overwrite, const std::string &name) {
      ++asked;
      EXPECT_FALSE(overwrite);
      EXPECT_EQ(name, "a.txt");
      overwrite = c.answer;
    };
    if (c.hasHandler) z->OnPromptForOverwrite = TUZOverwriteEvent::Of(&handler);
    EXPECT_EQ(z->UnZipSelected(), c.expected);
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
    auto z = Opened(zip);
    ASSERT_EQ(z->GetCount(), 6);
    EXPECT_EQ(z->GetPathname(5), "a/../../"); // a backslash is a delimiter
    for (int i = 0; i < z->GetCount(); ++i)
      z->SetSelected(i, true);
    z->RecreateDirs = recreate;
    z->SetDestDir(dest);
    EXPECT_EQ(z->UnZipSelected(), 6);
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
  WriteZip(dir / "l.zip", {{"sub/x.txt", "x"}, {"y.txt", "new"}});
  dir.WriteFile("outside/y.txt", "outside");
  fs::create_directories(dir / "dest");
  fs::create_directory_symlink(dir / "outside", dir / "dest/sub");
  fs::create_symlink(dir / "outside/y.txt", dir / "dest/y.txt");
  auto z = Opened(dir / "l.zip");
  z->SetSelected(0, true);
  z->SetDestDir(dir / "dest");
  EXPECT_THROW(z->UnZipSelected(), EZipError); // sub is a link, not a folder to enter
  EXPECT_FALSE(fs::exists(dir / "outside/x.txt"));

  z->ClearSelected();
  z->SetSelected(1, true);
  z->OverwriteMode = TUZOverwriteMode::Always;
  EXPECT_EQ(z->UnZipSelected(), 1);
  // The link itself was replaced; the file it pointed to is untouched.
  EXPECT_FALSE(fs::is_symlink(dir / "dest/y.txt"));
  EXPECT_EQ(ReadFileBytes(dir / "dest/y.txt"), "new");
  EXPECT_EQ(ReadFileBytes(dir / "outside/y.txt"), "outside");
}

TEST(TVCLUnZip, DamagedMemberDataRaisesAndLeavesNoFile) {
  TempDir dir;
  std::string zip = dir / "crc.zip";
  WriteZip(zip, {{"p.txt", kCompressible, 0, true}}); // stored, so the bytes are in the file
  std::string bytes = ReadFileBytes(zip);
  bytes[bytes.find(kCompressible) + 100] = 'X'; // the data no longer fits its CRC
  dir.WriteFile("crc.zip", bytes);
  auto z = Opened(zip);
  z->SetSelected(0, true);
  z->SetDestDir(dir / "out");
  EXPECT_THROW(z->UnZipSelected(), EZipError);
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
