// TMemoryMapFile and TFlexibleSizeMap over named shared memory, in one process and across a fork.
#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include <kestrel/files/myStreamMemLists.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/platform/Errors.h>
#include <kestrel/frame/platform/SharedMemory.h>

#include "files/SharedRegionTestSupport.h"
#include "support/FileSizeLimit.h"
#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::InChild;
using kestrel::test::RegionExists;
using kestrel::test::UniqueMapName;

namespace {

std::string Read(TFlexibleSizeMap &map, int32_t offset, int32_t count) {
  std::string s(static_cast<size_t>(count), '\0');
  s.resize(static_cast<size_t>(map.ReadFromMemmap(s.data(), offset, count)));
  return s;
}

void Write(TFlexibleSizeMap &map, int32_t offset, const std::string &s) {
  map.WriteToMemmap(s.data(), offset, static_cast<int32_t>(s.size()));
}

// The message of the EAccessViolation a call raises, or "none".
constexpr auto FaultOf = &test::MessageOf<EAccessViolation>;

// A map without a region: no handle, no view, no size, nothing to read or write.
void ExpectClosed(TFlexibleSizeMap &map) {
  EXPECT_EQ(map.fMapHandle, 0);
  EXPECT_EQ(map.fView, nullptr);
  EXPECT_EQ(map.fMapSize, 0);
  EXPECT_EQ(Read(map, 0, 4), "");
  EXPECT_THROW(map.SetMemL(0, 1), EAccessViolation);
}

TEST(MemoryMapFile, CreatorWritesItsSizeAndOpenersTakeIt) {
  std::string name = UniqueMapName("size");
  TFlexibleSizeMap creator(name, 100);
  EXPECT_EQ(creator.fMapName, kSharedMapPrefix + name);
  EXPECT_TRUE(RegionExists(name));
  EXPECT_EQ(creator.fMapSize, 100);
  EXPECT_EQ(creator.GetMemL(0), 100);
  MEMORY_BASIC_INFORMATION info;
  ASSERT_NE(VirtualQuery(creator.fView, &info, sizeof info), 0u);
  EXPECT_EQ(info.RegionSize, 104u); // the size and its header

  TFlexibleSizeMap opener(name, 7);
  EXPECT_EQ(opener.fMapSize, 100);
  Write(creator, 10, "shared");
  EXPECT_EQ(Read(opener, 10, 6), "shared");
}

TEST(MemoryMapFile, ReadStopsAtTheMapSize) {
  TFlexibleSizeMap map(UniqueMapName("read"), 16);
  Write(map, 4, "abcdefghijklmnop");
  struct Case {
    int32_t offset, count, read, position;
  } cases[] = {{14, 4, 2, 16}, {16, 4, 0, 16}, {20, 4, 0, 20},
               {4, -1, 0, 4},  {-2, 4, 0, -2}, {0, 0, 0, 0}};
  for (const Case &c : cases) {
    char buf[8] = {};
    EXPECT_EQ(map.ReadFromMemmap(buf, c.offset, c.count), c.read) << c.offset << "," << c.count;
    EXPECT_EQ(map.fPosition, c.position) << c.offset << "," << c.count;
  }
  EXPECT_EQ(Read(map, 14, 4), "kl");
  Write(map, 8, "xy");
  EXPECT_EQ(map.fPosition, 10);
  EXPECT_EQ(static_cast<char *>(map.PositionPtr()) - static_cast<char *>(map.fBase), 10);
}

TEST(MemoryMapFile, AccessOutsideTheRegionOrOnAClosedMapRaises) {
  TFlexibleSizeMap map(UniqueMapName("guard"), 16);
  map.SetMemL(16, 7); // the region's last 4 bytes: 16 + 4 long
  EXPECT_EQ(map.GetMemL(16), 7);
  EXPECT_THROW(map.SetMemL(17, 1), EAccessViolation);
  EXPECT_THROW(map.GetMemL(20), EAccessViolation);
  EXPECT_THROW(map.GetMemL(-1), EAccessViolation);
  EXPECT_THROW(Write(map, 10, std::string(11, 'x')), EAccessViolation);
  EXPECT_EQ(Read(map, 10, 6), std::string(6, '\0')); // the refused write wrote nothing

  // Offsets count from fBase, wherever a caller points it; the view still bounds them.
  map.fBase = static_cast<char *>(map.fView) + 4;
  map.SetMemL(0, 9);
  EXPECT_EQ(map.GetMemL(12), 7); // the last 4 bytes again
  EXPECT_THROW(map.GetMemL(13), EAccessViolation);
  map.fBase = static_cast<char *>(map.fView) - 4; // below the view: the fault names the access
  EXPECT_NE(FaultOf([&] { Read(map, 0, 4); }).find(": read of"), std::string::npos);
  EXPECT_NE(FaultOf([&] { Write(map, 0, "abcd"); }).find(": write of"), std::string::npos);
  map.fBase = map.fView;
  EXPECT_EQ(map.GetMemL(4), 9);

  map.Close();
  ExpectClosed(map);
  EXPECT_THROW(map.GetMemL(0), EAccessViolation);
  EXPECT_THROW(Write(map, 4, "a"), EAccessViolation);
}

// A map that mends a fault by growing, or that claims to mend it and does not.
class MendingMap : public TFlexibleSizeMap {
public:
  MendingMap(const std::string &name, int32_t size, bool grow)
      : TFlexibleSizeMap(name, size), grow(grow) {}
  bool HandleException(void *pointer, int32_t offset) override {
    ++calls;
    if (grow) Checksize(offset + 4);
    return true;
  }
  bool grow;
  int calls = 0;
};

TEST(MemoryMapFile, HandleExceptionDecidesOneRetry) {
  MendingMap growing(UniqueMapName("grow"), 8, true);
  growing.SetMemL(200, 42);
  EXPECT_EQ(growing.calls, 1);
  EXPECT_EQ(growing.fMapSize, 204);
  EXPECT_EQ(growing.GetMemL(200), 42);

  MendingMap pretending(UniqueMapName("pretend"), 8, false);
  EXPECT_THROW(pretending.SetMemL(200, 42), EAccessViolation);
  EXPECT_EQ(pretending.calls, 1); // the second fault goes to the caller
}

TEST(MemoryMapFile, RemapChangesNothingWhileOpen) {
  TFlexibleSizeMap map(UniqueMapName("remap"), 16);
  void *view = map.fView;
  map.Remap(64);
  EXPECT_EQ(map.fView, view);
  EXPECT_EQ(map.fMapSize, 16);
  map.Close();
  map.Remap(64);
  EXPECT_EQ(map.fMapSize, 64);
}

TEST(MemoryMapFile, ChecksizeReplacesTheRegionUnlessAnotherHoldsIt) {
  std::string name = UniqueMapName("checksize");
  TFlexibleSizeMap map(name, 16);
  Write(map, 4, "old");
  map.Checksize(16);
  EXPECT_EQ(Read(map, 4, 3), "old"); // same size: untouched
  map.Checksize(32);
  EXPECT_EQ(map.fMapSize, 32);
  EXPECT_EQ(map.GetMemL(0), 32);
  EXPECT_EQ(Read(map, 4, 3), std::string(3, '\0')); // a new region

  Write(map, 4, "kept");
  {
    TFlexibleSizeMap other(name, 4);
    map.Checksize(64);
    EXPECT_EQ(map.fMapSize, 32); // the held region came back
    EXPECT_EQ(Read(map, 4, 4), "kept");
  }
}

TEST(MemoryMapFile, RefusedNamesSizesAndRoomLeaveAClosedMapAndNoRegion) {
  for (std::string name : {std::string("a/b"), std::string(300, 'n')}) {
    TFlexibleSizeMap map(name, 16);
    SCOPED_TRACE(name.size());
    ExpectClosed(map);
  }
  EXPECT_EQ(OpenFileMappingA(FILE_MAP_ALL_ACCESS, false, "a/b"), 0);
  EXPECT_EQ(GetLastError(), uint32_t(EINVAL));
  EXPECT_EQ(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, "zero"), 0);
  TFlexibleSizeMap negative(UniqueMapName("negative"), -8);
  ExpectClosed(negative);
  std::string name = UniqueMapName("full");
  {
    test::FileSizeLimit room(65536);
    TFlexibleSizeMap map(name, 1 << 20);
    EXPECT_EQ(GetLastError(), uint32_t(EFBIG));
    ExpectClosed(map);
  }
  EXPECT_FALSE(RegionExists(name));
}

TEST(MemoryMapFile, RegionGoesWithItsLastHandleOrView) {
  std::string name = UniqueMapName("last");
  {
    TFlexibleSizeMap a(name, 16), b(name, 16);
    a.Close();
    EXPECT_TRUE(RegionExists(name));
  }
  EXPECT_FALSE(RegionExists(name));

  std::string systemName = kSharedMapPrefix + name;
  THandle h =
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 64, systemName.c_str());
  ASSERT_NE(h, 0);
  EXPECT_EQ(GetLastError(), 0u);
  THandle again =
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 8, systemName.c_str());
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  void *view = MapViewOfFile(again, FILE_MAP_ALL_ACCESS, 0, 0, 0);
  MEMORY_BASIC_INFORMATION info;
  ASSERT_NE(VirtualQuery(view, &info, sizeof info), 0u);
  EXPECT_EQ(info.RegionSize, 64u); // the first size holds
  EXPECT_NE(VirtualAlloc(static_cast<char *>(view) + 63, 1, MEM_COMMIT, PAGE_READWRITE), nullptr);
  EXPECT_EQ(VirtualAlloc(static_cast<char *>(view) + 64, 1, MEM_COMMIT, PAGE_READWRITE), nullptr);
  EXPECT_TRUE(CloseHandle(h));
  EXPECT_TRUE(CloseHandle(again));
  EXPECT_FALSE(CloseHandle(again));
  EXPECT_TRUE(RegionExists(name)); // the view still holds it
  EXPECT_TRUE(UnmapViewOfFile(view));
  EXPECT_FALSE(RegionExists(name));
}

TEST(MemoryMapFile, TwoProcessesShareARegionThatGoesWithTheLast) {
  std::string name = UniqueMapName("fork");
  auto parent = std::make_unique<TFlexibleSizeMap>(name, 64);
  Write(*parent, 4, "from parent");
  int status = InChild([&] {
    TFlexibleSizeMap child(name, 4);
    if (child.fMapSize != 64) return 1;
    if (Read(child, 4, 11) != "from parent") return 2;
    Write(child, 40, "from child");
    return 0; // the child's map closes here, before it leaves
  });
  ASSERT_EQ(status, 0);
  EXPECT_EQ(Read(*parent, 40, 10), "from child");
  EXPECT_TRUE(RegionExists(name));

  // A holder that dies without closing leaves the count right.
  status = InChild([&] {
    TFlexibleSizeMap child(name, 4);
    ::raise(SIGKILL);
    return 0;
  });
  EXPECT_EQ(status, -1);
  parent.reset();
  EXPECT_FALSE(RegionExists(name));
}

TEST(MemoryMapFile, ALeftoverOfACrashedLastHolderIsCleared) {
  std::string name = UniqueMapName("leftover");
  int status = InChild([&] {
    TFlexibleSizeMap child(name, 32);
    Write(child, 4, "stale");
    ::raise(SIGKILL);
    return 0;
  });
  EXPECT_EQ(status, -1);
  EXPECT_TRUE(RegionExists(name)); // unheld, until someone asks for the name
  std::string systemName = kSharedMapPrefix + name;
  EXPECT_EQ(OpenFileMappingA(FILE_MAP_ALL_ACCESS, false, systemName.c_str()), 0);
  EXPECT_FALSE(RegionExists(name));

  // The same from the create side: the new map is a creator with its size.
  status = InChild([&] {
    TFlexibleSizeMap child(name, 32);
    ::raise(SIGKILL);
    return 0;
  });
  EXPECT_EQ(status, -1);
  TFlexibleSizeMap fresh(name, 8);
  EXPECT_EQ(fresh.fMapSize, 8);
  EXPECT_EQ(fresh.GetMemL(0), 8);
}

} // namespace
