#include <gtest/gtest.h>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/Search.h>

using namespace kestrel;

namespace {

// A minimal engine over the shared base: exact find of a literal, enough to
// exercise the result bookkeeping that every engine inherits.
class LiteralEngine : public TSearchEngine {
public:
  using TSearchEngine::TSearchEngine;
  ~LiteralEngine() override { LiteralEngine::Clear(); }
  int clears = 0;
  std::u16string pattern;

  void Clear() override {
    ++clears;
    pattern.clear();
    TSearchEngine::Clear();
  }
  void FindPrepare(const std::u16string &p, TSearchFlags f) override {
    FindPrepare(p.data(), static_cast<uint32_t>(p.size()), f);
  }
  void FindPrepare(const char16_t *p, uint32_t n, TSearchFlags) override { pattern.assign(p, n); }
  bool FindFirst(const std::u16string &t, uint32_t &a, uint32_t &b) override {
    return FindFirst(t.data(), static_cast<uint32_t>(t.size()), a, b);
  }
  bool FindFirst(const char16_t *t, uint32_t n, uint32_t &a, uint32_t &b) override {
    ClearResults();
    auto at = std::u16string_view(t, n).find(pattern);
    if (pattern.empty() || at == std::u16string_view::npos) return false;
    a = static_cast<uint32_t>(at);
    b = a + static_cast<uint32_t>(pattern.size());
    AddResult(a, b);
    return true;
  }
  bool FindAll(const std::u16string &t) override {
    return FindAll(t.data(), static_cast<uint32_t>(t.size()));
  }
  bool FindAll(const char16_t *t, uint32_t n) override {
    ClearResults();
    std::u16string_view v(t, n);
    for (size_t at = v.find(pattern); !pattern.empty() && at != v.npos;
         at = v.find(pattern, at + pattern.size()))
      AddResult(static_cast<uint32_t>(at), static_cast<uint32_t>(at + pattern.size()));
    return GetCount() > 0;
  }
};

std::vector<std::pair<int32_t, int32_t>> Pairs(TSearchEngine &e) {
  std::vector<std::pair<int32_t, int32_t>> out;
  for (uint32_t i = 0; i < e.GetCount(); ++i) {
    int32_t a = -1, b = -1;
    e.GetResult(i, a, b);
    out.emplace_back(a, b);
  }
  return out;
}

using P = std::vector<std::pair<int32_t, int32_t>>;

} // namespace

TEST(SearchFlags, OneByteWithTheFlagValuesOfTheStoredSet) {
  EXPECT_EQ(TSearchFlags{TSearchFlag::sfCaseSensitive}.Raw(), 1u);
  EXPECT_EQ(TSearchFlags{TSearchFlag::sfIgnoreNonSpacing}.Raw(), 2u);
  EXPECT_EQ(TSearchFlags{TSearchFlag::sfSpaceCompress}.Raw(), 4u);
  EXPECT_EQ(TSearchFlags{TSearchFlag::sfLeftBounded}.Raw(), 8u);
  EXPECT_EQ(TSearchFlags{TSearchFlag::sfRightBounded}.Raw(), 16u);
}

TEST(SearchEngine, ResultsArePairsReadBackByIndex) {
  LiteralEngine e(nullptr);
  EXPECT_EQ(e.GetCount(), 0u);
  e.AddResult(3, 5);
  e.AddResult(0, 0xFFFFFFFFu);
  EXPECT_EQ(e.GetCount(), 2u);
  EXPECT_EQ(Pairs(e), (P{{3, 5}, {0, -1}})); // read back as signed numbers
}

TEST(SearchEngine, DeleteResultTakesTheWholePair) {
  LiteralEngine e(nullptr);
  for (uint32_t i = 0; i < 3; ++i)
    e.AddResult(i * 10, i * 10 + 2);
  e.DeleteResult(1);
  EXPECT_EQ(Pairs(e), (P{{0, 2}, {20, 22}}));
  e.DeleteResult(1);
  EXPECT_EQ(Pairs(e), (P{{0, 2}}));
}

TEST(SearchEngine, IndexOutOfRangeFailsAsTheListDoes) {
  LiteralEngine e(nullptr);
  int32_t a = 0, b = 0;
  EXPECT_THROW(e.GetResult(0, a, b), EListError);
  e.AddResult(1, 2);
  EXPECT_THROW(e.GetResult(1, a, b), EListError);
  EXPECT_THROW(e.GetResult(0x80000000u, a, b), EListError); // 2 x Index would wrap to 0
  EXPECT_THROW(e.DeleteResult(0x80000000u), EListError);
  EXPECT_THROW(e.DeleteResult(1), EListError);
  EXPECT_EQ(e.GetCount(), 1u); // a failed delete took nothing
}

TEST(SearchEngine, ClearGoesThroughTheVirtualSlotsAndKeepsTheOwner) {
  auto *owner = reinterpret_cast<TWideStrings *>(0x1000); // never read by the engine
  LiteralEngine e(owner);
  EXPECT_EQ(e.GetOwner(), owner);
  e.FindPrepare(u"ab", {});
  EXPECT_TRUE(e.FindAll(u"abxab"));
  EXPECT_EQ(Pairs(e), (P{{0, 2}, {3, 5}}));
  e.Clear();
  EXPECT_EQ(e.clears, 1);
  EXPECT_EQ(e.GetCount(), 0u);
  EXPECT_TRUE(e.pattern.empty());
}

TEST(SearchEngine, AFindReplacesTheResults) {
  LiteralEngine e(nullptr);
  e.FindPrepare(u"b", {});
  EXPECT_TRUE(e.FindAll(u"bbb"));
  uint32_t a = 0, b = 0;
  EXPECT_TRUE(e.FindFirst(u"xb", a, b));
  EXPECT_EQ(Pairs(e), (P{{1, 2}}));
  EXPECT_FALSE(e.FindAll(u"xyz"));
  EXPECT_EQ(e.GetCount(), 0u);
}
