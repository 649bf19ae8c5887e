// Typed lists of holders: what they free and when, and their small queries.
#include <gtest/gtest.h>

#include <cstring>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

int gFreed = 0;

// A holder of the list's own class that counts its destruction.
template <typename Holder> struct Counted : Holder {
  template <typename A> explicit Counted(A a) : Holder(a) {}
  ~Counted() override { ++gFreed; }
};

char *NewCString() {
  char *s = StrAlloc(6);
  std::strcpy(s, "words");
  return s;
}

template <typename List> TObject *NewHolder() {
  using H = typename List::HolderType;
  if constexpr (std::is_same_v<H, TLongIntHolder>)
    return new Counted<H>(int32_t(5));
  else if constexpr (std::is_same_v<H, TPCharHolder>)
    return new Counted<H>(NewCString());
  else
    return new Counted<H>(TExtraFontRec{});
}

// Lists of a number, a C string and a record: all share one owning base.
template <typename List> class HolderLists : public ::testing::Test {
protected:
  void SetUp() override { gFreed = 0; }
  // Three holders with an empty slot between them.
  static List *Filled() {
    auto *list = new List;
    for (TObject *item :
         {NewHolder<List>(), static_cast<TObject *>(nullptr), NewHolder<List>(), NewHolder<List>()})
      list->Add(item);
    return list;
  }
};
using OwningLists = ::testing::Types<TLongintList, TDir_Info_List, TExtraFontList>;
TYPED_TEST_SUITE(HolderLists, OwningLists);

TYPED_TEST(HolderLists, ClearFreeAndDestructionFreeEveryHolderOnce) {
  TypeParam *list = this->Filled();
  list->Clear();
  EXPECT_EQ(gFreed, 3);
  EXPECT_EQ(list->Count(), 0);
  list->Add(NewHolder<TypeParam>()); // still usable
  delete list;
  EXPECT_EQ(gFreed, 4);
  this->Filled()->Free();
  EXPECT_EQ(gFreed, 7);
  static_cast<TObject *>(this->Filled())->Free(); // the root class's way
  EXPECT_EQ(gFreed, 10);
}

TYPED_TEST(HolderLists, DeleteTakesAHolderOutWithoutFreeingIt) {
  TypeParam *list = this->Filled();
  auto *taken = static_cast<TObject *>(list->Get(0));
  list->Delete(0);
  delete list;
  EXPECT_EQ(gFreed, 2);
  delete taken;
}

TEST(HolderListQueries, LongintIndexOF) {
  TLongintList list;
  EXPECT_EQ(list.IndexOF(3), -1);
  for (int32_t v : {4, 3, 9, 3})
    list.Add(new TLongIntHolder(v));
  list.Insert(0, nullptr); // an empty slot is passed over
  EXPECT_EQ(list.IndexOF(3), 2);
  EXPECT_EQ(list.IndexOF(5), -1);
}

TEST(HolderListQueries, OneFileFromRunningTotals) {
  TTokensAndFileSizesList list;
  // Running totals of (size, tokens) after each file.
  for (double_longint_rec totals : {double_longint_rec{100, 10}, {250, 30}, {300, 31}})
    list.Add(new TDoubleLongIntHolder(totals));
  struct Case {
    int32_t n, size, tokens;
  };
  for (Case c : {Case{1, 100, 10}, Case{2, 150, 20}, Case{3, 50, 1}}) {
    EXPECT_EQ(list.GetThisFileSize(c.n), c.size);
    EXPECT_EQ(list.GetThisFileTokens(c.n), c.tokens);
  }
  EXPECT_THROW(list.GetThisFileSize(0), EListError);
  EXPECT_THROW(list.GetThisFileTokens(4), EListError);
}

TEST(SmallAndLongintStringList, FreesItsObjectsOnlyWhenItOwnsThem) {
  for (bool owns : {false, true}) {
    SCOPED_TRACE(owns);
    gFreed = 0;
    auto *list = new TSmallAndLongintStringList(owns);
    TObject *objects[3];
    for (TObject *&object : objects) {
      object = new Counted<TSmallAndLongintHolder>(small_and_long_rec{1, 2});
      list->AddObject("w", object);
    }
    list->AddObject("no object", nullptr);
    list->Delete(0); // Delete frees nothing
    list->Clear();
    EXPECT_EQ(gFreed, owns ? 2 : 0);
    list->AddObject("w", objects[0]);
    list->Free();
    EXPECT_EQ(gFreed, owns ? 3 : 0);
    if (!owns) // alive after the list went
      for (TObject *object : objects)
        delete object;
  }
}

} // namespace
} // namespace kestrel
