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
  template <typename... A> explicit Counted(A... a) : Holder(a...) {}
  ~Counted() override { ++gFreed; }
};

template <typename List> Counted<typename List::HolderType> *NewHolder();
template <> Counted<TLongIntHolder> *NewHolder<TLongintList>() {
  return new Counted<TLongIntHolder>(int32_t(5));
}
template <> Counted<TSmallIntHolder> *NewHolder<TSmallintList>() {
  return new Counted<TSmallIntHolder>(int16_t(5));
}
template <> Counted<TSmallAndLongintHolder> *NewHolder<TSmallAndLongintList>() {
  return new Counted<TSmallAndLongintHolder>(small_and_long_rec{1, 2});
}
template <> Counted<TFileDetailsHolder> *NewHolder<TFileDetailsHolderList>() {
  return new Counted<TFileDetailsHolder>(FileDetails_rec{1, 2, 3, "a.txt"});
}
char *NewCString() {
  char *s = StrAlloc(6);
  std::strcpy(s, "words");
  return s;
}
template <> Counted<TPCharHolder> *NewHolder<TPcharList>() {
  return new Counted<TPCharHolder>(NewCString());
}
template <> Counted<TPCharHolder> *NewHolder<TDir_Info_List>() {
  return NewHolder<TPcharList>();
}
template <> Counted<TLongIntAndPCharHolder> *NewHolder<TLongIntAndPCharList>() {
  return new Counted<TLongIntAndPCharHolder>(LongintAndPChar_rec{NewCString(), 3});
}
template <> Counted<TBooleanAndPCharHolder> *NewHolder<TBooleanAndPCharList>() {
  return new Counted<TBooleanAndPCharHolder>(BooleanAndPChar_rec{NewCString(), true});
}
template <> Counted<TTwoBooleanAndPCharHolder> *NewHolder<TTwoBooleanAndPCharList>() {
  return new Counted<TTwoBooleanAndPCharHolder>(TwoBooleanAndPChar_rec{NewCString(), true, true});
}
template <> Counted<TDoubleLongIntHolder> *NewHolder<TDoubleLongIntList>() {
  return new Counted<TDoubleLongIntHolder>(double_longint_rec{1, 2});
}
template <> Counted<TDoubleLongIntHolder> *NewHolder<TTokensAndFileSizesList>() {
  return NewHolder<TDoubleLongIntList>();
}
template <> Counted<TConcordance_call_recHolder> *NewHolder<Tconcordance_call_recHolderList>() {
  return new Counted<TConcordance_call_recHolder>(concordance_call_rec{1, 2, 3, 4});
}
template <> Counted<TExtraFontHolder> *NewHolder<TExtraFontList>() {
  return new Counted<TExtraFontHolder>(TExtraFontRec{});
}

template <typename List> class HolderLists : public ::testing::Test {
protected:
  void SetUp() override { gFreed = 0; }
  // A list of three holders with an empty slot between them.
  static List *Filled() {
    auto *list = new List;
    list->Add(NewHolder<List>());
    list->Add(nullptr);
    list->Add(NewHolder<List>());
    list->Add(NewHolder<List>());
    return list;
  }
};
using OwningLists =
    ::testing::Types<TLongintList, TSmallintList, TSmallAndLongintList, TFileDetailsHolderList,
                     TPcharList, TDir_Info_List, TLongIntAndPCharList, TBooleanAndPCharList,
                     TTwoBooleanAndPCharList, TDoubleLongIntList, TTokensAndFileSizesList,
                     Tconcordance_call_recHolderList, TExtraFontList>;
TYPED_TEST_SUITE(HolderLists, OwningLists);

TYPED_TEST(HolderLists, ClearFreesEveryHolderOnce) {
  TypeParam *list = this->Filled();
  list->Clear();
  EXPECT_EQ(gFreed, 3);
  EXPECT_EQ(list->Count(), 0);
  list->Add(NewHolder<TypeParam>()); // still usable
  delete list;
  EXPECT_EQ(gFreed, 4);
}

TYPED_TEST(HolderLists, FreeFreesHoldersThenTheList) {
  this->Filled()->Free();
  EXPECT_EQ(gFreed, 3);
}

TYPED_TEST(HolderLists, DestructionThroughTheRootClassFreesHolders) {
  TObject *list = this->Filled();
  list->Free();
  EXPECT_EQ(gFreed, 3);
}

TYPED_TEST(HolderLists, DeleteTakesAHolderOutWithoutFreeingIt) {
  TypeParam *list = this->Filled();
  auto *taken = static_cast<typename TypeParam::HolderType *>(list->Get(0));
  list->Delete(0);
  EXPECT_EQ(gFreed, 0);
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
  EXPECT_EQ(list.IndexOF(9), 3);
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
    SCOPED_TRACE(c.n);
    EXPECT_EQ(list.GetThisFileSize(c.n), c.size);
    EXPECT_EQ(list.GetThisFileTokens(c.n), c.tokens);
  }
  EXPECT_THROW(list.GetThisFileSize(0), EListError);
  EXPECT_THROW(list.GetThisFileTokens(4), EListError);
}

TEST(HolderListQueries, NumberListLeavesItsItemsToTheCaller) {
  int32_t item = 1;
  auto *list = new TNumberList(-3);
  list->Add(&item);
  EXPECT_EQ(list->number, -3);
  delete list; // freeing &item would be caught by the sanitizers
}

TEST(SmallAndLongintStringList, FreesItsObjectsOnlyWhenItOwnsThem) {
  using Holder = Counted<TSmallAndLongintHolder>;
  for (bool owns : {false, true}) {
    SCOPED_TRACE(owns);
    gFreed = 0;
    Holder *kept[3];
    auto fill = [&](TSmallAndLongintStringList &list) {
      for (Holder *&h : kept) {
        h = new Holder(small_and_long_rec{1, 2});
        list.AddObject("w", h);
      }
      list.AddObject("no object", nullptr);
    };
    auto *viaFree = new TSmallAndLongintStringList(owns);
    fill(*viaFree);
    viaFree->Free();
    EXPECT_EQ(gFreed, owns ? 3 : 0);
    if (!owns)
      for (Holder *h : kept)
        delete h; // alive after the list went
    gFreed = 0;
    TSmallAndLongintStringList viaClear(owns);
    fill(viaClear);
    viaClear.Delete(0); // Delete frees nothing
    EXPECT_EQ(gFreed, 0);
    viaClear.Clear();
    EXPECT_EQ(gFreed, owns ? 2 : 0);
    delete kept[0];
    if (!owns)
      for (Holder *h : {kept[1], kept[2]})
        delete h;
  }
}

} // namespace
} // namespace kestrel
