// Members read straight into a stream, from an archive read once: the data,
// and the member's name with the reason when it can't be had.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/zip/VCLUnZip.h>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"

using namespace kestrel;
using kestrel::test::ReadFileBytes;
using kestrel::test::TempDir;
using kestrel::test::WriteZip;

namespace {

std::string Unzipped(TVCLUnZip &z, int32_t index) {
  TMemoryStream out;
  const int64_t size = z.UnZipToStream(&out, index);
  EXPECT_EQ(size, out.GetSize());
  return std::string(static_cast<const char *>(out.Memory()), static_cast<size_t>(out.GetSize()));
}

// The failure's message, or "none".
std::string Failure(TVCLUnZip &z, int32_t index) {
  try {
    Unzipped(z, index);
  } catch (const EZipError &e) {
    EXPECT_NE(e.Message().find(e.Reason), std::string::npos);
    return e.Message();
  }
  return "none";
}

// Overwrites the 4-byte field at offset `field` of every header whose
// signature is `signature`.
void Patch(std::string &bytes, const char *signature, size_t field, uint32_t value) {
  for (size_t at = bytes.find(signature); at != std::string::npos;
       at = bytes.find(signature, at + 4))
    for (int i = 0; i < 4; ++i)
      bytes[at + field + i] = static_cast<char>(value >> (8 * i));
}

} // namespace

TEST(TVCLUnZipStream, EveryMemberFromOneReading) {
  TempDir dir;
  std::string big(300000, 'x');
  for (size_t i = 0; i < big.size(); i += 7)
    big[i] = static_cast<char>('a' + i % 26);
  WriteZip(dir / "m.zip", {{"a.txt", "first"}, {"d/", ""}, {"d/b.txt", big}, {"e.txt", ""}});
  TVCLUnZip z(nullptr);
  z.SetZipName(dir / "m.zip");
  z.ReadZip();
  EXPECT_EQ(Unzipped(z, 0), "first");
  EXPECT_EQ(Unzipped(z, 2), big);
  EXPECT_EQ(Unzipped(z, 3), "");
  EXPECT_EQ(Unzipped(z, 0), "first"); // again, in any order
  EXPECT_NE(Failure(z, 1).find("folder entry"), std::string::npos);
  TVCLUnZip none(nullptr);
  EXPECT_THROW(Unzipped(none, 0), EZipError);
}

TEST(TVCLUnZipStream, DamageIsReportedWithTheMembersNameAndTheReason) {
  TempDir dir;
  const std::string payload(500, 'p');
  WriteZip(dir / "ok.zip", {{"sub/p.txt", payload, 0, true}});
  const std::string good = ReadFileBytes(dir / "ok.zip");
  struct Row {
    const char *name;
    std::string bytes;
    const char *reason;
  } rows[] = {
      {"crc.zip", good, "CRC"},
      {"short.zip", good, "inconsistent"}, // libzip sees the stored size run out
      {"long.zip", good, "longer"},
  };
  rows[0].bytes[rows[0].bytes.find(payload) + 100] = 'X';
  Patch(rows[1].bytes, "PK\x03\x04", 22, 600); // claims 600 bytes, holds 500
  Patch(rows[1].bytes, "PK\x01\x02", 24, 600);
  Patch(rows[2].bytes, "PK\x03\x04", 22, 400); // claims 400 bytes, holds 500
  Patch(rows[2].bytes, "PK\x01\x02", 24, 400);
  for (const Row &r : rows) {
    SCOPED_TRACE(r.name);
    dir.WriteFile(r.name, r.bytes);
    TVCLUnZip z(nullptr);
    z.SetZipName(dir / r.name);
    try {
      z.ReadZip();
    } catch (const EZipError &e) {
      // libzip may refuse the inconsistent sizes when it reads the directory
      EXPECT_STRNE(r.reason, "CRC") << e.Message();
      continue;
    }
    const std::string message = Failure(z, 0);
    EXPECT_NE(message.find(dir / r.name + "/sub/p.txt"), std::string::npos) << message;
    EXPECT_NE(message.find(r.reason), std::string::npos) << message;
  }
}
