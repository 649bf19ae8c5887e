// The host's pointer list: growth steps, notifications, errors and sorting.
#include <gtest/gtest.h>

#include <functional>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TList.h>

namespace kestrel {
namespace {

void *P(intptr_t v) {
  return reinterpret_cast<void *>(v);
}
intptr_t V(void *p) {
  return reinterpret_cast<intptr_t>(p);
}

// Records notifications and growth to check the order the host promises.
class RecordingList : public TList {
public:
  ~RecordingList() override { Clear(); }
  std::vector<std::pair<intptr_t, TListNotification>> log;
  std::vector<int32_t> capacities; // after each growth

protected:
  void Notify(void *p, TListNotification a) override { log.emplace_back(V(p), a); }
  void Grow() override {
    TList::Grow();
    capacities.push_back(Capacity());
  }
};

TEST(TList, BadIndexesRaiseWithTheIndexInTheMessage) {
  TList list;
  list.Add(P(1));
  for (auto bad : std::initializer_list<std::function<void()>>{
           [&] { list.Get(-1); }, [&] { list.Put(5, nullptr); }, [&] { list.Delete(1); },
           [&] { list.Exchange(0, 1); }, [&] { list.Insert(2, nullptr); },
           [&] { list.Move(0, 1); }})
    EXPECT_THROW(bad(), EListError);
  try {
    list.Get(7);
    FAIL();
  } catch (const EListError &e) {
    EXPECT_EQ(e.Message(), "List index out of bounds (7)");
  }
  EXPECT_EQ(list.Count(), 1);
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
  try {
    static_cast<TList &>(list).Error(Consts::SListIndexError, 9);
    FAIL();
  } catch (const Own &e) {
    EXPECT_STREQ(e.what(), "List index out of bounds (9)");
  }
}

TEST(TList, GrowsByTheHostSteps) {
  RecordingList list;
  for (int i = 1; i <= 100; ++i)
    list.Add(P(i));
  // 4 while small, 16 up to 64, then a quarter.
  EXPECT_EQ(list.capacities, (std::vector<int32_t>{4, 8, 12, 28, 44, 60, 76, 95, 118}));
}

TEST(TList, NotifiesAddsAndDeletesButNotNulls) {
  RecordingList list;
  list.Add(P(1));
  list.Add(nullptr);
  list.Insert(0, P(2));
  list.Put(2, P(3));
  list.Delete(0);
  EXPECT_EQ(V(list.Extract(P(1))), 1);
  using N = TListNotification;
  EXPECT_EQ(list.log, (decltype(list.log){{1, N::lnAdded},
                                          {2, N::lnAdded},
                                          {3, N::lnAdded},
                                          {2, N::lnDeleted},
                                          {1, N::lnExtracted}}));
  list.log.clear();
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 0);
  EXPECT_EQ(list.log, (decltype(list.log){{3, N::lnDeleted}}));
}

TEST(TList, PackExchangeMoveIndexOfRemove) {
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
  EXPECT_EQ(V(list.Last()), 1);
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

} // namespace
} // namespace kestrel
