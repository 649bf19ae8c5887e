// The host's file stream: reading, writing, sharing, failures and file dates.
#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/platform/Platform.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::ReadFileBytes;
using kestrel::test::TempDir;

TEST(TFileStream, CreateWritesAndReadReadsBack) {
  TempDir dir;
  std::string name = dir / "f.bin";
  {
    TFileStream s(name, fmCreate);
    s.WriteBuffer("hello world", 11);
    EXPECT_EQ(s.Size(), 11);
    s.SetPosition(6);
    s.WriteBuffer("W", 1);
  }
  EXPECT_EQ(ReadFileBytes(name), "hello World");
  TFileStream r(name, fmOpenRead | fmShareDenyNone);
  char buf[32] = {};
  EXPECT_EQ(r.Read(buf, 32), 11); // a short read gives the count done
  EXPECT_EQ(std::string(buf), "hello World");
  EXPECT_EQ(r.Read(buf, 5), 0);
  r.SetPosition(3);
  EXPECT_THROW(r.ReadBuffer(buf, 9), EReadError);
  EXPECT_EQ(r.Write("x", 1), 0); // opened for reading only
  EXPECT_THROW(r.WriteBuffer("x", 1), EWriteError);
  EXPECT_EQ(r.Seek(int64_t(-2), TSeekOrigin::soEnd), 9);
}

TEST(TFileStream, CreateTruncatesAndSetSizeCuts) {
  TempDir dir;
  dir.WriteFile("t.bin", "0123456789");
  {
    TFileStream s(dir / "t.bin", fmOpenReadWrite);
    s.SetSize(int64_t(4));
  }
  EXPECT_EQ(ReadFileBytes(dir / "t.bin"), "0123");
  { TFileStream s(dir / "t.bin", fmCreate); }
  EXPECT_EQ(ReadFileBytes(dir / "t.bin"), "");
}

TEST(TFileStream, FailuresRaiseWithTheNameAndReason) {
  TempDir dir;
  try {
    TFileStream s(dir / "missing.txt", fmOpenRead);
    FAIL();
  } catch (const EFOpenError &e) {
    EXPECT_NE(e.Message().find("Cannot open file \"" + dir / "missing.txt" + "\"."),
              std::string::npos)
        << e.Message();
    EXPECT_NE(e.Message().find("No such file"), std::string::npos) << e.Message();
    EXPECT_EQ(GetLastOSError(), ENOENT);
  }
  EXPECT_THROW(TFileStream(dir / "no/such/folder.txt", fmCreate), EFCreateError);
  EXPECT_THROW(TFileStream(dir.Path(), fmOpenRead), EFOpenError); // a folder is no file
  EXPECT_THROW(TFileStream(dir.Path(), fmCreate), EFCreateError);
  dir.WriteFile("x", "x");
  EXPECT_THROW(TFileStream(dir / "x", 3), EFOpenError); // no such access mode
}

TEST(TFileStream, DriveLettersMapToTheirRoot) {
  TempDir dir;
  SetDriveRoot('Q', dir.Path());
  {
    TFileStream s("Q:/q.txt", fmCreate);
    s.WriteBuffer("q", 1);
  }
  EXPECT_NO_THROW(TFileStream("Q:/q.txt", fmOpenRead));
  SetDriveRoot('Q', "");
  EXPECT_EQ(ReadFileBytes(dir / "q.txt"), "q");
}

TEST(TFileStream, SharingFollowsTheOpenModes) {
  TempDir dir;
  dir.WriteFile("s.txt", "shared");
  std::string n = dir / "s.txt";
  struct Case {
    uint16_t first, second;
    bool allowed;
  } cases[] = {
      {fmOpenRead | fmShareDenyNone, fmOpenReadWrite | fmShareDenyNone, true},
      {fmOpenRead | fmShareDenyWrite, fmOpenRead | fmShareDenyNone, true},
      {fmOpenRead | fmShareDenyWrite, fmOpenWrite | fmShareDenyNone, false},
      {fmOpenRead | fmShareDenyNone, fmOpenRead | fmShareDenyWrite, true},
      {fmOpenWrite | fmShareDenyNone, fmOpenRead | fmShareDenyWrite, false}, // it denies a writer
      {fmOpenRead | fmShareDenyRead, fmOpenRead | fmShareDenyNone, false},
      {fmOpenRead | fmShareExclusive, fmOpenRead | fmShareDenyNone, false},
      {fmOpenRead, fmOpenRead | fmShareDenyNone, false}, // compatibility shares nothing
      {fmOpenRead | fmShareDenyNone, fmCreate, false},
      {fmCreate, fmOpenRead | fmShareDenyNone, false},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::to_string(c.first) + " then " + std::to_string(c.second));
    dir.WriteFile("s.txt", "shared");
    TFileStream a(n, c.first);
    if (c.allowed) {
      EXPECT_NO_THROW(TFileStream(n, c.second));
    } else {
      try {
        TFileStream b(n, c.second);
        ADD_FAILURE() << "opened";
      } catch (const EFileStreamError &e) {
        EXPECT_NE(e.Message().find("in use"), std::string::npos) << e.Message();
        EXPECT_EQ(GetLastOSError(), ERROR_SHARING_VIOLATION_ERRNO);
      }
      EXPECT_EQ(ReadFileBytes(n), c.first == fmCreate ? "" : "shared"); // nothing truncated
    }
  }
  // Once the holder is gone, the file opens again.
  { TFileStream a(n, fmOpenRead | fmShareExclusive); }
  EXPECT_NO_THROW(TFileStream(n, fmOpenRead | fmShareExclusive));
}

TEST(TFileStream, HandleDatesUseTheStamp) {
  TempDir dir;
  dir.WriteFile("d.txt", "d");
  THandle h = FileOpen(dir / "d.txt", fmOpenWrite | fmShareDenyWrite);
  ASSERT_GE(h, 0);
  int32_t stamp = DateTimeToFileDate(EncodeDateTime(2001, 2, 3, 4, 5, 6, 0));
  EXPECT_EQ(FileSetDate(h, stamp), 0);
  EXPECT_EQ(FileGetDate(h), stamp);
  EXPECT_NE(FileSetDate(h, 0), 0); // an invalid stamp is refused
  FileClose(h);
  EXPECT_EQ(FileAge(dir / "d.txt"), stamp);
  EXPECT_EQ(FileAge(dir / "none.txt"), -1);
  EXPECT_EQ(FileSetDate(dir / "d.txt", stamp + 1), 0);
  EXPECT_EQ(FileAge(dir / "d.txt"), stamp + 1);
}
