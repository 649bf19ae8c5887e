// Stored layouts of short strings and sets, object-bound callbacks, the lock.
#include <gtest/gtest.h>

#include <thread>

#include <kestrel/frame/host/Host.h>

namespace kestrel {
namespace {

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

} // namespace
} // namespace kestrel
