// The host's pointer list: growth steps, notifications, errors and sorting.
#include <gtest/gtest.h>

#include <functional>

#include <kestrel/frame/host/Host.h>

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

// Each bad call on a list of one item raises with the value named; a
// subclass raises its own error for every fault the list finds.
TEST(TList, BadIndexesRaiseWithTheIndexInTheMessage) {
  struct Own : std::runtime_error {
    using std::runtime_error::runtime_error;
  };
  struct OwnErrors : TList {
    void Error(const char *msg, intptr_t data) const override {
      throw Own(Format(msg, static_cast<int>(data)));
    }
  };
  TList list;
  OwnErrors own;
  for (TList *l : {&list, static_cast<TList *>(&own)}) {
    l->Add(P(1));
    const std::tuple<std::function<void()>, const char *, int> calls[] = {
        {[&] { l->Get(-1); }, Consts::SListIndexError, -1},
        {[&] { l->Get(1); }, Consts::SListIndexError, 1},
        {[&] { l->Put(1, nullptr); }, Consts::SListIndexError, 1},
        {[&] { l->Delete(1); }, Consts::SListIndexError, 1},
        {[&] { l->Exchange(0, 1); }, Consts::SListIndexError, 1},
        {[&] { l->Exchange(-1, 0); }, Consts::SListIndexError, -1},
        {[&] { l->Insert(2, nullptr); }, Consts::SListIndexError, 2},
        {[&] { l->Move(0, 1); }, Consts::SListIndexError, 1},
        {[&] { l->SetCapacity(0); }, Consts::SListCapacityError, 0},
        {[&] { l->SetCount(-1); }, Consts::SListCountError, -1}};
    for (const auto &[call, msg, value] : calls) {
      std::string message = "none";
      try {
        call();
      } catch (const EListError &e) {
        message = l == &list ? e.Message() : "the list's own error";
      } catch (const Own &e) {
        message = l == &own ? e.what() : "the subclass's error";
      }
      EXPECT_EQ(message, Format(msg, value));
    }
    EXPECT_EQ(l->Count(), 1);
  }
  EXPECT_EQ(Format(Consts::SListIndexError, 7), "List index out of bounds (7)");
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
