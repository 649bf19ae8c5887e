// Streams: checked transfers, the memory stream and the resource stream.
#include <gtest/gtest.h>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

TEST(TStream, ReadBufferRaisesOnAShortRead) {
  TMemoryStream s;
  s.WriteBuffer("abcdef", 6);
  s.SetPosition(2);
  char buf[8] = {};
  EXPECT_EQ(s.Read(buf, 8), 4);
  EXPECT_EQ(std::string(buf, 4), "cdef");
  EXPECT_EQ(s.Read(buf, 8), 0);
  s.SetPosition(4);
  EXPECT_THROW(s.ReadBuffer(buf, 3), EReadError);
  s.SetPosition(0);
  EXPECT_NO_THROW(s.ReadBuffer(buf, 6));
}

TEST(TStream, MemoryStreamSeeksGrowsAndFillsGapsWithZeros) {
  TMemoryStream s;
  EXPECT_EQ(s.Seek(10, soFromBeginning), 10);
  s.WriteBuffer("x", 1);
  EXPECT_EQ(s.Size(), 11);
  EXPECT_EQ(static_cast<const char *>(s.Memory())[3], 0);
  EXPECT_EQ(s.Seek(-1, soFromEnd), 10);
  EXPECT_EQ(s.Seek(int64_t(-5), TSeekOrigin::soCurrent), 5);
  EXPECT_EQ(s.Remaining(), 6);
  s.SetSize(int64_t(3));
  EXPECT_EQ(s.Position(), 3);
  EXPECT_EQ(s.Remaining(), 0);
  s.SetPosition(-4); // before the start: reads nothing, writes nothing
  char c;
  EXPECT_EQ(s.Read(&c, 1), 0);
  EXPECT_EQ(s.Write(&c, 1), 0);
}

TEST(TStream, ResourceStreamReadsEmbeddedDataAndRefusesWrites) {
  static const unsigned char data[] = {1, 2, 3, 4};
  ReplaceResourceBlob("PROBE", "TESTDATA", ResourceBlob{data, sizeof data});
  TResourceStream s(KestrelModuleHandle(), "probe", "testdata");
  EXPECT_EQ(s.Size(), 4);
  unsigned char out[4];
  s.ReadBuffer(out, 4);
  EXPECT_EQ(out[3], 4);
  EXPECT_THROW(s.Write(out, 1), EStreamError);
  ReplaceResourceBlob("PROBE", "TESTDATA", ResourceBlob{nullptr, 0});
  EXPECT_THROW(TResourceStream(KestrelModuleHandle(), "PROBE", "TESTDATA"), EResNotFound);
  EXPECT_EQ(test::MessageOf<EResNotFound>(
                [] { TResourceStream(KestrelModuleHandle(), "NOSUCH", "UNICODE"); }),
            "Resource NOSUCH not found");
}

} // namespace
} // namespace kestrel
