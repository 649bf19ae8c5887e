// TMyStreamMemList through a subclass whose items in the map are length + 1 and the bytes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <kestrel/files/myStreamMemLists.h>
#include <kestrel/frame/host/Exceptions.h>

#include "files/SharedRegionTestSupport.h"

using namespace kestrel;
using kestrel::test::InChild;
using kestrel::test::RegionExists;
using kestrel::test::UniqueMapName;

namespace {

class StringMemList : public TMyStreamMemList {
public:
  explicit StringMemList(const std::string &name) : TMyStreamMemList(name) {}
  ~StringMemList() override { Clear(); }

  void AddString(const std::string &s) { Add(new std::string(s)); }
  std::vector<std::string> Strings() const {
    std::vector<std::string> v;
    for (int32_t i = 0; i < Count(); ++i)
      v.push_back(*static_cast<std::string *>(Get(i)));
    return v;
  }
  void Clear() override {
    for (int32_t i = 0; i < Count(); ++i)
      delete static_cast<std::string *>(Get(i));
    TMyStreamMemList::Clear();
  }

  int32_t ItemSizeInMemmap(int32_t index) override {
    return 4 + static_cast<int32_t>(static_cast<std::string *>(Get(index))->size());
  }
  bool WriteItemToMemmap(int32_t index) override {
    ++written;
    if (index == failAt) return false;
    const std::string &s = *static_cast<std::string *>(Get(index));
    int32_t number = static_cast<int32_t>(s.size()) + 1;
    fMemmap->WriteToMemmap(&number, fMemmap->fPosition, 4);
    fMemmap->WriteToMemmap(s.data(), fMemmap->fPosition, static_cast<int32_t>(s.size()));
    return true;
  }
  int32_t ReadItemFromMemmap() override {
    if (readResult) return *readResult;
    int32_t length = fMemmap->GetMemL(fMemmap->fPosition - 4) - 1;
    std::string s(static_cast<size_t>(length), '\0');
    int32_t read = fMemmap->ReadFromMemmap(s.data(), fMemmap->fPosition, length);
    AddString(s);
    return read;
  }

  int written = 0;
  int32_t failAt = -1;
  const int32_t *readResult = nullptr; // a subclass that misreports
};

TEST(StreamMemList, ANewListHasAMapOfTheHeaderAloneAndRoundTripsEmpty) {
  StringMemList list(UniqueMapName("new"));
  EXPECT_EQ(list.fMemmap->fMapSize, 4);
  EXPECT_FALSE(list.fInMemmap);
  StringMemList unnamed("");
  EXPECT_EQ(unnamed.fMemmap->fMapName, "wordbuf_compartilhar");
  EXPECT_NE(unnamed.fMemmap->fView, nullptr);
  // An empty list round trip.
  EXPECT_TRUE(list.CopyToMemmap());
  EXPECT_EQ(list.fMemmap->GetMemL(0), 4);
  EXPECT_TRUE(list.LoadFromMemmap());
  EXPECT_EQ(list.Count(), 0);
}

TEST(StreamMemList, MoveAndLoadBetweenTwoLists) {
  std::string name = UniqueMapName("move");
  auto writer = std::make_unique<StringMemList>(name);
  for (const char *s : {"alpha", "b", "gamma delta"})
    writer->AddString(s);
  ASSERT_TRUE(writer->MoveToMemmap());
  EXPECT_TRUE(writer->fInMemmap);
  EXPECT_EQ(writer->Count(), 0);
  EXPECT_EQ(writer->fMemmap->GetMemL(0), 4 + 9 + 5 + 15);

  StringMemList reader(name); // opens the region the writer left
  EXPECT_TRUE(reader.LoadFromMemmap());
  EXPECT_EQ(reader.Strings(), (std::vector<std::string>{"alpha", "b", "gamma delta"}));

  writer.release()->Free();
  EXPECT_TRUE(RegionExists(name)); // the reader still holds it
}

TEST(StreamMemList, AFailedWriteKeepsTheItems) {
  StringMemList list(UniqueMapName("fail"));
  for (const char *s : {"one", "two", "three"})
    list.AddString(s);
  list.failAt = 1;
  EXPECT_FALSE(list.MoveToMemmap());
  EXPECT_EQ(list.written, 2); // none after the failure
  EXPECT_FALSE(list.fInMemmap);
  EXPECT_EQ(list.Strings(), (std::vector<std::string>{"one", "two", "three"}));
}

TEST(StreamMemList, AWriterCannotGrowARegionAnotherHolds) {
  std::string name = UniqueMapName("held");
  StringMemList writer(name), holder(name);
  writer.AddString("does not fit");
  EXPECT_THROW(writer.MoveToMemmap(), EAccessViolation);
  EXPECT_EQ(writer.fMemmap->fMapSize, 4); // the held region came back
  EXPECT_EQ(writer.Strings(), std::vector<std::string>{"does not fit"});
}

TEST(StreamMemList, LoadReportsEmptyItemsAndEndsOnBadOnes) {
  std::string name = UniqueMapName("load");
  StringMemList list(name);
  for (const char *s : {"x", "", "yz"})
    list.AddString(s);
  ASSERT_TRUE(list.CopyToMemmap());
  EXPECT_FALSE(list.LoadFromMemmap()); // the empty item read no bytes
  EXPECT_EQ(list.Strings(), (std::vector<std::string>{"x", "", "yz"}));

  // An item number of 0 or less ends the load.
  list.fMemmap->SetMemL(9, -5);
  EXPECT_TRUE(list.LoadFromMemmap());
  EXPECT_EQ(list.Strings(), std::vector<std::string>{"x"});

  // A subclass that reports a negative size still moves the load on.
  const int32_t negative = -1000;
  list.readResult = &negative;
  EXPECT_FALSE(list.LoadFromMemmap());
  EXPECT_EQ(list.Count(), 0);

  StringMemList refused("bad/name");
  EXPECT_FALSE(refused.LoadFromMemmap());
  refused.AddString("x");
  EXPECT_THROW(refused.CopyToMemmap(), EAccessViolation);
}

TEST(StreamMemList, AnotherProcessLoadsWhatOneMoved) {
  std::string name = UniqueMapName("fork");
  {
    StringMemList writer(name);
    writer.AddString("across");
    writer.AddString("processes");
    ASSERT_TRUE(writer.MoveToMemmap());
    int status = InChild([&] {
      StringMemList reader(name);
      if (!reader.LoadFromMemmap()) return 1;
      if (reader.Strings() != std::vector<std::string>{"across", "processes"}) return 2;
      reader.Clear();
      reader.AddString("answered");
      return reader.CopyToMemmap() ? 0 : 3; // fits the larger region it holds
    });
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(writer.LoadFromMemmap());
    EXPECT_FALSE(writer.fInMemmap);
    EXPECT_EQ(writer.Strings(), std::vector<std::string>{"answered"});
  }
  EXPECT_FALSE(RegionExists(name));
}

} // namespace
