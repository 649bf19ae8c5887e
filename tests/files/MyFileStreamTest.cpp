#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include <kestrel/files/myFileStreamU.h>
#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/TempPath.h>
#include <kestrel/unicode/WideCStrings.h>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"

using namespace kestrel;
using kestrel::test::ReadFileBytes;
using kestrel::test::ScriptedMessageBoxes;
using kestrel::test::TempDir;
using kestrel::test::WriteZip;
namespace fs = std::filesystem;

namespace {

// A memory stream over given bytes that notes the largest read asked of it.
class Probe : public TMemoryStream {
public:
  explicit Probe(const std::string &bytes) {
    if (!bytes.empty()) WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
    SetPosition(0);
  }
  int32_t Read(void *buffer, int32_t count) override {
    // Beyond the fixed 4 bytes of a count, no read asks for more than is left.
    EXPECT_LE(count, std::max<int64_t>(Remaining(), 4)) << "asked past the end";
    largest = std::max(largest, count);
    return TMemoryStream::Read(buffer, count);
  }
  int32_t largest = 0;
};

std::string Le32(uint32_t v) {
  return std::string{char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
}

} // namespace

TEST(StreamFields, FormsOnTheStream) {
  struct Row {
    const char *what;
    std::function<bool(TStream *)> write;
    std::string bytes;
    bool result;
  } rows[] = {
      {"long", [](TStream *s) { return WriteUnknownLengthString(s, "abc"); }, Le32(3) + "abc",
       true},
      {"short empty", [](TStream *s) { return WriteShortString(s, ""); }, std::string(1, '\0'),
       true},
      {"short 255", [](TStream *s) { return WriteShortString(s, std::string(255, 'a')); },
       "\xFF" + std::string(255, 'a'), true},
      // Only the low eight bits of the length are kept: 260 is written as 4.
      {"short 260", [](TStream *s) { return WriteShortString(s, std::string(256, 'c') + "tail"); },
       "\4cccc", true},
      {"wide", [](TStream *s) { return WriteWideString(s, u"A\u00E9"); },
       Le32(2) + std::string("A\0\xE9\0", 4), true},
      {"wide pair", [](TStream *s) { return WriteWideString(s, u"\U0001F600"); },
       Le32(2) + std::string("\x3D\xD8\x00\xDE", 4), true},
      {"pointer", [](TStream *s) { return WriteUnknownLengthPointer(s, "xy", false); },
       Le32(2) + "xy", true},
      {"wide pointer", [](TStream *s) { return WriteUnknownLengthPointer(s, u"xy", true); },
       Le32(2) + std::string("x\0y\0", 4), true},
      {"null pointer", [](TStream *s) { return WriteUnknownLengthPointer(s, nullptr, false); },
       Le32(0), false},
      {"empty pointer", [](TStream *s) { return WriteUnknownLengthPointer(s, "", false); }, Le32(0),
       true},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.what);
    TMemoryStream s;
    EXPECT_EQ(r.write(&s), r.result);
    EXPECT_EQ(test::BytesOf(s), r.bytes);
  }
}

TEST(StreamFields, EachFormReadsBackAndTheTwinFormsAreOne) {
  TMemoryStream s;
  std::string bytes("bytes\0with zero", 15);
  std::u16string wide = u"w\u00EFde \U0001F600";
  WriteUnknownLengthString(&s, bytes);
  WriteShortString(&s, "short");
  WriteWideString(&s, wide);
  WriteUnknownLengthPointer(&s, "narrow", false);
  WriteUnknownLengthPointer(&s, u"wide C", true);
  WriteUnknownLengthString(&s, "");
  s.SetPosition(0);
  EXPECT_EQ(ReadUnknownLengthString(&s), bytes);
  EXPECT_EQ(ReadShortString(&s), "short");
  EXPECT_EQ(ReadWideString(&s), wide);
  // A C string reads as a long byte string and a wide C string as a wide one.
  EXPECT_EQ(ReadUnknownLengthString(&s), "narrow");
  EXPECT_EQ(ReadWideString(&s), u"wide C");
  EXPECT_EQ(ReadUnknownLengthPointer(&s, false), nullptr); // the empty string
  EXPECT_EQ(s.Position(), s.Size());

  s.SetPosition(0);
  char *p = static_cast<char *>(ReadUnknownLengthPointer(&s, false));
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(std::string(p, 15), bytes);
  EXPECT_EQ(p[15], '\0');
  EXPECT_GE(StrBufSize(p), 16u);
  StrDispose(p);
  ReadShortString(&s);
  auto *w = static_cast<char16_t *>(ReadUnknownLengthPointer(&s, true));
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(std::u16string(w), wide);
  EXPECT_EQ(StrBufSizeW(w), wide.size() + 1);
  StrDisposeW(w);
}

TEST(StreamFields, HostileCountsNeverReachPastTheStream) {
  struct Row {
    const char *what;
    std::string bytes;
    std::string narrow; // what the long and pointer readers give
    std::u16string wide;
  } rows[] = {
      {"huge count", Le32(0x7FFFFFFF) + "abc", "abc", u"\u6261"},
      {"negative count", Le32(0xFFFFFFFF) + "abc", "", u""},
      {"most negative", Le32(0x80000000) + "abc", "", u""},
      {"count cut off", std::string("\x05\x00", 2), "", u""},
      {"nothing at all", "", "", u""},
      {"count past the end", Le32(10) + "abcd", "abcd", u"\u6261\u6463"},
      {"odd tail", Le32(3) + "abcde", "abc", u"\u6261\u6463"},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.what);
    Probe a(r.bytes);
    EXPECT_EQ(ReadUnknownLengthString(&a), r.narrow);
    Probe b(r.bytes);
    EXPECT_EQ(ReadWideString(&b), r.wide);
    Probe c(r.bytes); // an empty string comes as no pointer
    char *p = static_cast<char *>(ReadUnknownLengthPointer(&c, false));
    EXPECT_EQ(p ? std::string(p) : "(null)", r.narrow.empty() ? "(null)" : r.narrow);
    StrDispose(p);
    Probe d(r.bytes);
    auto *w = static_cast<char16_t *>(ReadUnknownLengthPointer(&d, true));
    EXPECT_EQ(w ? std::u16string(w) : u"(null)", r.wide.empty() ? u"(null)" : r.wide);
    StrDisposeW(w);
  }
  Probe s(std::string("\xFF", 1) + "ab"); // a short string longer than what follows
  EXPECT_EQ(ReadShortString(&s), "ab");
  EXPECT_LE(s.largest, 2);
}

TEST(StreamFields, ReadersPassTheStreamsException) {
  class Failing : public TMemoryStream {
  public:
    int32_t Read(void *, int32_t) override { throw EReadError("broken"); }
  } f;
  EXPECT_THROW(ReadUnknownLengthString(&f), EReadError);
}

TEST(TMyFileStream, WriteAShortStringIsTheShortForm) {
  TempDir dir;
  {
    TMyFileStream f(dir / "s.bin", fmCreate);
    EXPECT_TRUE(f.WriteAShortString("héllo"));
    WriteUnknownLengthString(&f, "tail");
  }
  EXPECT_EQ(ReadFileBytes(dir / "s.bin"), "\x06h\xC3\xA9llo" + Le32(4) + "tail");
}

namespace {

struct ZipCorpus {
  TempDir dir;
  std::string tmp = dir / "tmp";
  ZipCorpus() {
    fs::create_directories(tmp);
    SetTempPath(tmp);
    SetDriveRoot('K', dir.Path());
    fs::create_directories(dir / "corpus");
    WriteZip(dir / "corpus/b.zip", {{"a.txt", "first"}, {"sub/c.txt", "second"}, {"sub/", ""}});
    WriteZip(dir / "corpus/UP.ZIP", {{"u.txt", "upper"}});
  }
  ~ZipCorpus() {
    SetTempPath("");
    SetDriveRoot('K', "");
  }
};

} // namespace

TEST(OpenedAZipFileToTempDir, UnpacksTheMemberByItsNumber) {
  ZipCorpus z;
  ScriptedMessageBoxes boxes;
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/b.zip/a.txt", 1), z.tmp + "/a.txt");
  EXPECT_EQ(ReadFileBytes(z.tmp + "/a.txt"), "first");
  // A member in a stored folder lands directly in the temporary folder.
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/b.zip/sub/c.txt", 2), z.tmp + "/c.txt");
  EXPECT_EQ(ReadFileBytes(z.tmp + "/c.txt"), "second");
  EXPECT_FALSE(fs::exists(z.tmp + "/sub"));
  EXPECT_TRUE(boxes.Boxes().empty());
  // The plain name of the archive will do too; c.txt is there now: asked, and overwritten.
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/b.zip", 2), z.tmp + "/c.txt");
  EXPECT_EQ(boxes.Boxes().size(), 1u);
}

TEST(OpenedAZipFileToTempDir, EmptyResults) {
  ZipCorpus z;
  ScriptedMessageBoxes boxes;
  std::string b = z.dir / "corpus/b.zip";
  EXPECT_EQ(OpenedAZipFileToTempDir(b, 0), ""); // members count from 1
  EXPECT_EQ(OpenedAZipFileToTempDir(b, 4), ""); // past the count
  EXPECT_EQ(OpenedAZipFileToTempDir(b, 3), ""); // a folder entry: nothing to unpack
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/a.txt", 1), ""); // no ".zip" at all
  z.dir.WriteFile("corpus/fake.zip", "not an archive");
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/fake.zip", 1), ""); // raises nothing
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/none.zip", 1), "");
  EXPECT_TRUE(fs::is_empty(z.tmp));
  EXPECT_TRUE(boxes.Boxes().empty());
}

TEST(OpenedAZipFileToTempDir, CapitalsAndTheFirstZipInTheName) {
  ZipCorpus z;
  // ".ZIP" in capitals is found; the lower-cased name is the file that opens.
  EXPECT_EQ(OpenedAZipFileToTempDir("K:/Corpus/B.ZIP/SUB/C.TXT", 2), z.tmp + "/c.txt");
  // Where only the name in its own capitals exists, that one opens.
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "corpus/UP.ZIP/u.txt", 1), z.tmp + "/u.txt");
  // The cut falls after the first ".zip", here a folder's: no archive there.
  fs::create_directories(z.dir / "data/x.zip.old");
  fs::copy_file(z.dir / "corpus/b.zip", z.dir / "data/x.zip.old/b.zip");
  EXPECT_EQ(OpenedAZipFileToTempDir(z.dir / "data/x.zip.old/b.zip/a.txt", 1), "");
  EXPECT_FALSE(fs::exists(z.tmp + "/a.txt"));
}

TEST(OpenedAZipFileToTempDir, AsksBeforeOverwriting) {
  ZipCorpus z;
  z.dir.WriteFile("tmp/a.txt", "mine");
  std::string b = z.dir / "corpus/b.zip";
  {
    ScriptedMessageBoxes boxes({IDCANCEL});
    EXPECT_EQ(OpenedAZipFileToTempDir(b, 1), "");
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].caption, "File Exists");
    EXPECT_EQ(boxes.Boxes()[0].text, z.tmp + "/a.txt\rexists...\rOverwrite?");
    EXPECT_EQ(boxes.Boxes()[0].type, 1u); // the component's own box, OK and Cancel
    EXPECT_EQ(ReadFileBytes(z.tmp + "/a.txt"), "mine");
  }
  {
    ScriptedMessageBoxes boxes({IDOK});
    EXPECT_EQ(OpenedAZipFileToTempDir(b, 1), z.tmp + "/a.txt");
    EXPECT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(ReadFileBytes(z.tmp + "/a.txt"), "first");
  }
}
