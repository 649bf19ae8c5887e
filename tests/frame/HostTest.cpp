#include <gtest/gtest.h>

#include <thread>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>

using namespace kestrel;

namespace {

// Records notifications to check the order the host promises.
class RecordingList : public TList {
public:
  ~RecordingList() override { Clear(); }
  std::vector<std::pair<intptr_t, TListNotification>> log;
  int grows = 0;

protected:
  void Notify(void *p, TListNotification a) override {
    log.emplace_back(reinterpret_cast<intptr_t>(p), a);
  }
  void Grow() override {
    ++grows;
    TList::Grow();
  }
};

void *P(intptr_t v) { return reinterpret_cast<void *>(v); }
intptr_t V(void *p) { return reinterpret_cast<intptr_t>(p); }

} // namespace

TEST(TList, BadIndexRaisesWithTheIndexInTheMessage) {
  TList list;
  list.Add(P(1));
  EXPECT_THROW(list.Get(1), EListError);
  EXPECT_THROW(list.Get(-1), EListError);
  EXPECT_THROW(list.Put(5, nullptr), EListError);
  EXPECT_THROW(list.Delete(1), EListError);
  EXPECT_THROW(list.Exchange(0, 1), EListError);
  EXPECT_THROW(list.Insert(2, nullptr), EListError);
  try {
    list.Get(7);
    FAIL();
  } catch (const EListError &e) {
    EXPECT_EQ(e.Message(), "List index out of bounds (7)");
  }
}

// A subclass raises its own error for every fault the list finds.
TEST(TList, ASubclassOverridesError) {
  struct Own : std::runtime_error {
    using std::runtime_error::runtime_error;
  };
  class OwnErrors : public TList {
  public:
    void Error(const char *msg, intptr_t data) const override {
      throw Own(Format(msg, static_cast<int>(data)));
    }
  };
  OwnErrors list;
  list.Add(P(1));
  EXPECT_THROW(list.Get(3), Own);
  EXPECT_THROW(list.Delete(-1), Own);
  EXPECT_THROW(list.SetCapacity(0), Own);
  EXPECT_THROW(list.SetCount(-1), Own);
  TList &base = list;
  try {
    base.Error(Consts::SListIndexError, 9);
    FAIL();
  } catch (const Own &e) {
    EXPECT_STREQ(e.what(), "List index out of bounds (9)");
  }
}

TEST(TList, GrowsByTheHostSteps) {
  RecordingList list;
  std::vector<int32_t> capacities;
  for (int i = 1; i <= 100; ++i) {
    int32_t before = list.Capacity();
    list.Add(P(i));
    if (list.Capacity() != before)
      capacities.push_back(list.Capacity());
  }
  // 4 while small, 16 up to 64, then a quarter.
  std::vector<int32_t> expected{4, 8, 12, 28, 44, 60, 76, 95, 118};
  EXPECT_EQ(capacities, expected);
  EXPECT_EQ(list.grows, 9);
}

TEST(TList, NotifiesAddsAndDeletesButNotNulls) {
  RecordingList list;
  list.Add(P(1));
  list.Add(nullptr);
  list.Insert(0, P(2));
  list.Put(2, P(3));
  list.Delete(0);
  void *extracted = list.Extract(P(1));
  EXPECT_EQ(V(extracted), 1);
  using N = TListNotification;
  std::vector<std::pair<intptr_t, N>> expected{
      {1, N::lnAdded}, {2, N::lnAdded}, {3, N::lnAdded}, {2, N::lnDeleted},
      {1, N::lnExtracted}};
  EXPECT_EQ(list.log, expected);
  list.log.clear();
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 0);
  ASSERT_EQ(list.log.size(), 1u);
  EXPECT_EQ(list.log[0].first, 3);
}

TEST(TList, PackExchangeMoveIndexOf) {
  TList list;
  for (intptr_t v : {5, 0, 3, 0, 1})
    list.Add(P(v));
  list.Pack();
  ASSERT_EQ(list.Count(), 3);
  list.Exchange(0, 2);
  EXPECT_EQ(V(list[0]), 1);
  EXPECT_EQ(V(list[2]), 5);
  list.Move(0, 2);
  EXPECT_EQ(V(list[2]), 1);
  EXPECT_EQ(list.IndexOf(P(3)), 0);
  EXPECT_EQ(list.IndexOf(P(42)), -1);
  EXPECT_EQ(list.Remove(P(5)), 1);
  EXPECT_EQ(list.Count(), 2);
}

TEST(TList, SortOrdersAndSurvivesAnInconsistentCompare) {
  TList list;
  uint32_t seed = 12345;
  for (int i = 0; i < 1000; ++i) {
    seed = seed * 1103515245u + 12345u;
    list.Add(P((seed >> 8) % 500));
  }
  list.Sort([](void *a, void *b) { return int(V(a) - V(b)); });
  for (int i = 1; i < list.Count(); ++i)
    ASSERT_LE(V(list[i - 1]), V(list[i]));
  // A compare that answers at random must not run off the array.
  list.Sort([](void *, void *) {
    static uint32_t s = 1;
    s = s * 1664525u + 1013904223u;
    return int(s >> 30) - 1;
  });
  EXPECT_EQ(list.Count(), 1000);
}

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
  try {
    TResourceStream(KestrelModuleHandle(), "NOSUCH", "UNICODE");
  } catch (const EResNotFound &e) {
    EXPECT_EQ(e.Message(), "Resource NOSUCH not found");
  }
}

TEST(SysUtils, PathParts) {
  EXPECT_EQ(ExtractFilePath("/a/b/c.txt"), "/a/b/");
  EXPECT_EQ(ExtractFilePath("c.txt"), "");
  EXPECT_EQ(ExtractFileName("/a/b/c.txt"), "c.txt");
  EXPECT_EQ(ExtractFileExt("/a.d/b"), "");
  EXPECT_EQ(ExtractFileExt("b.tar.gz"), ".gz");
  EXPECT_EQ(ChangeFileExt("/x/b.txt", ".lst"), "/x/b.lst");
  EXPECT_EQ(IncludeTrailingPathDelimiter("/a"), "/a/");
  EXPECT_EQ(IncludeTrailingPathDelimiter("/a/"), "/a/");
  EXPECT_EQ(ExtractFileDir("/a/b/c"), "/a/b");
  EXPECT_EQ(ExtractFileDir("/c"), "/");
  EXPECT_EQ(ExtractFilePath("C:x"), "C:");
}

TEST(SysUtils, NumbersAndText) {
  EXPECT_EQ(StrToInt(" 42 "), 42);
  EXPECT_EQ(StrToInt("-2147483648"), INT32_MIN);
  EXPECT_EQ(StrToInt("$FF"), 255);
  EXPECT_THROW(StrToInt("12a"), EConvertError);
  EXPECT_THROW(StrToInt(""), EConvertError);
  EXPECT_THROW(StrToInt("2147483648"), EConvertError);
  EXPECT_EQ(StrToIntDef("x", -1), -1);
  EXPECT_EQ(Format("%s=%d", "a", 5), "a=5");
  EXPECT_TRUE(SameText("Hello", "hELLO"));
  EXPECT_LT(CompareText("abc", "ABD"), 0);
  EXPECT_EQ(Trim("  a b \t"), "a b");
}

TEST(SysUtils, ChDirReportsThroughIOResultWithoutRaising) {
  std::string here = GetCurrentDir();
  ChDir("/no/such/folder/here");
  EXPECT_NE(IOResult(), 0);
  EXPECT_EQ(IOResult(), 0); // cleared by the read
  EXPECT_EQ(GetCurrentDir(), here);
}

TEST(Types, ShortStringAndSetLayouts) {
  ShortString<5> s("abcdefg");
  EXPECT_EQ(s.str(), "abcde");
  EXPECT_EQ(s.len, 5);
  static_assert(sizeof(ShortString<5>) == 6);
  enum class E : uint8_t { a, b, c, d, e, f, g, h, i, j };
  TSet<E, 2> set{E::a, E::j};
  EXPECT_EQ(set.Raw(), 0x0201u);
  EXPECT_TRUE(set.Contains(E::j));
  set.Exclude(E::j);
  EXPECT_FALSE(set.Contains(E::j));
  EXPECT_EQ((set + TSet<E, 2>{E::c}).Raw(), 0x5u);
}

TEST(Types, ObjectBoundCallbacks) {
  struct Counter {
    int n = 0;
    void Bump() { ++n; }
  } c;
  auto cb = OfObject<void()>::Bind<&Counter::Bump>(&c);
  cb();
  cb();
  EXPECT_EQ(c.n, 2);
  OfObject<void()> none;
  EXPECT_FALSE(none);
  EXPECT_TRUE(none == nullptr);
}

TEST(TCriticalSection, KeepsTwoThreadsOutOfEachOther) {
  TCriticalSection cs;
  long counter = 0;
  auto work = [&] {
    for (int i = 0; i < 100000; ++i) {
      cs.Enter();
      cs.Enter(); // the owner may re-enter
      long v = counter;
      counter = v + 1;
      cs.Leave();
      cs.Leave();
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_EQ(counter, 200000);
}
