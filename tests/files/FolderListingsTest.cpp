// Folder listings: the list of records, one folder's listing, stored forms and sorts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TestSupport.h"
#include <kestrel/files/PeruseDir.h>
#include <kestrel/frame/host/Host.h>

namespace kestrel {
namespace {

TMySearchRec Rec(const std::string &name, int32_t size = 0, TDateTime date = 0, int32_t attr = 0,
                 int16_t zip = 0) {
  TMySearchRec r;
  r.Name = name;
  r.Size = size;
  r.Date = date;
  r.Attr = attr;
  r.ZipNumber = zip;
  return r;
}

std::vector<std::string> Names(const TFolderful &f) {
  std::vector<std::string> names;
  for (int32_t i = 0; i < f.fGetTotalFiles(); ++i)
    names.push_back(f.fGetASearchRec(i).Name);
  return names;
}

TEST(FolderListing, StoredForm) {
  EXPECT_EQ(TFolderful("/corpus/").Dirname(), "/corpus/"); // the delimiter is added once
  TFolderful f("/c");
  f.fUserValue1 = 1;
  f.fUserValue2 = 2;
  f.fUserValue3 = 0x03040506;
  f.AddAFile(Rec("ab", 0x11223344, 1.5, 0x20, 7));
  TMemoryStream s;
  ASSERT_TRUE(f.SaveToStream(&s));
  const std::string expected = std::string("\x00"                 // sort
                                           "\x02\x00\x00\x00"     // value 2
                                           "\x06\x05\x04\x03"     // value 3
                                           "\x01\x00\x00\x00"     // value 1
                                           "\x03/c/"              // folder
                                           "\x01\0\0\0"           // count
                                           "\0\0\0\0\0\0\xF8\x3F" // date 1.5
                                           "\x44\x33\x22\x11"     // size
                                           "\x20\0\0\0"           // attributes
                                           "\x07\0\0\0"           // number, 0 reserved
                                           "\x02"
                                           "ab",
                                           44);
  EXPECT_EQ(test::BytesOf(s), expected);
}

TEST(FolderListing, ReadBackEqualsWhatWasSavedWhateverItsSort) {
  TFolderful f("/corpus");
  f.fUserValue1 = -1;
  f.fUserValue2 = 22;
  f.fUserValue3 = 333;
  f.AddAFile(Rec("b.txt", 10, 45000.25, 0x20));
  f.AddAFile(Rec("/corpus/a.zip/sub/c.txt", 30, 45001.5, 0x21, 2));
  f.AddAFile(Rec("a.txt", 20, 45002.75, 0x01));
  f.fSetSort(TMySearchRecSort::by_size);
  TMemoryStream s;
  ASSERT_TRUE(f.SaveToStream(&s));
  const uint8_t odd = 9; // a stored sort no tool sets: kept as read, with the stored order
  s.SetPosition(0);
  s.WriteBuffer(&odd, 1);
  s.SetPosition(0);
  TFolderful g("/elsewhere");
  g.AddAFile(Rec("dropped.txt"));
  ASSERT_TRUE(g.ReadFromStream(&s));
  EXPECT_EQ(s.Remaining(), 0);
  EXPECT_EQ(static_cast<uint8_t>(g.CurrentSort()), odd);
  g.fSetSort(static_cast<TMySearchRecSort>(odd)); // the same value: nothing happens
  // Every field was read back, none kept: saved again, the same bytes.
  TMemoryStream again;
  ASSERT_TRUE(g.SaveToStream(&again));
  EXPECT_EQ(test::BytesOf(again), test::BytesOf(s));
  g.fSetSort(TMySearchRecSort::by_date); // a real order still sorts
  EXPECT_EQ(g.fGetASearchRec(0).Name, "a.txt");
}

TEST(FolderListing, ReadingAppendsAndNamesOver255BytesComeBackCut) {
  const std::string longName = std::string(300, 'n');
  TMySearchRecList list;
  list.AddRec(Rec(longName));
  list.AddRec(Rec(std::string(255, 'm')));
  list.AddRec(Rec("after"));
  TMemoryStream s;
  list.SaveToStream(&s);
  s.SetPosition(0);
  TMySearchRecList back;
  back.AddRec(Rec("before")); // reading appends
  back.ReadFromStream(&s);
  ASSERT_EQ(back.Count(), 4);
  EXPECT_EQ(back.GetAMySearchRec(0).Name, "before");
  EXPECT_EQ(back.GetAMySearchRec(1).Name, std::string(44, 'n')); // 300 mod 256
  EXPECT_EQ(back.GetAMySearchRec(2).Name, std::string(255, 'm'));
  EXPECT_EQ(back.GetAMySearchRec(3).Name, "after"); // the stream stayed in step
}

TEST(FolderListing, TruncatedOrHostileStreamRaisesAndKeepsWhatWasRead) {
  TMySearchRecList list;
  list.AddRec(Rec("first"));
  list.AddRec(Rec("second"));
  TMemoryStream full;
  list.SaveToStream(&full);
  const std::string bytes = test::BytesOf(full);
  for (size_t cut : {size_t(2), size_t(10), size_t(4 + 26 + 5)}) {
    TMySearchRecList back;
    EXPECT_THROW(back.ReadFromStream(test::StreamOf(bytes.substr(0, cut)).get()), EStreamError);
    EXPECT_LE(back.Count(), 1) << cut;
  }
  // A count far beyond the stream fails at its end, not by allocating.
  TMySearchRecList back;
  EXPECT_THROW(back.ReadFromStream(test::StreamOf("\xFF\xFF\xFF\x7F").get()), EStreamError);
  EXPECT_EQ(back.Count(), 0);
  // A negative count (-5) reads no entries.
  EXPECT_TRUE(back.ReadFromStream(test::StreamOf("\xFB\xFF\xFF\xFF").get()));
  EXPECT_EQ(back.Count(), 0);
}

TEST(FolderListing, Sorts) {
  TFolderful f("/c");
  f.AddAFile(Rec("beta", 5, 3.0, 0x21));
  f.AddAFile(Rec("Alpha", 50, 1.0, 0x20));
  f.AddAFile(Rec("gamma", 20, 2.0, 0x01));
  f.fSetSort(TMySearchRecSort::by_name); // without regard to case
  EXPECT_EQ(Names(f), (std::vector<std::string>{"Alpha", "beta", "gamma"}));
  f.fSetSort(TMySearchRecSort::by_date); // newest first
  EXPECT_EQ(Names(f), (std::vector<std::string>{"beta", "gamma", "Alpha"}));
  f.fSetSort(TMySearchRecSort::by_attr); // ascending
  EXPECT_EQ(Names(f), (std::vector<std::string>{"gamma", "Alpha", "beta"}));
  f.fSetSort(TMySearchRecSort::by_size); // largest first
  EXPECT_EQ(Names(f), (std::vector<std::string>{"Alpha", "gamma", "beta"}));
  f.AddAFile(Rec("delta", 100)); // appended, and the same sort again does not sort
  f.fSetSort(TMySearchRecSort::by_size);
  f.SetCurrentSort(TMySearchRecSort::none); // keeps the order
  f.fSetASearchRec(Rec("epsilon", 1000));
  EXPECT_EQ(Names(f), (std::vector<std::string>{"Alpha", "gamma", "beta", "delta", "epsilon"}));
  EXPECT_EQ(f.CurrentSort(), TMySearchRecSort::none);
}

TEST(FolderListing, IndexedReads) {
  TFolderful f("/corpus");
  f.AddAFile(Rec("a.txt"));
  f.AddAFile(Rec("/corpus/b.zip/c.txt", 0, 0, 0, 2));
  EXPECT_FALSE(f.fGetIsZipfile(0));
  EXPECT_TRUE(f.fGetIsZipfile(1));
  EXPECT_EQ(f.fGetAFullname(0), "/corpus/a.txt");
  EXPECT_EQ(f.fGetAFullname(1), "/corpus/b.zip/c.txt"); // already full
  // Past the end: defaults, no error.
  EXPECT_FALSE(f.fGetIsZipfile(2));
  EXPECT_EQ(f.fGetAFullname(5), "");
  EXPECT_EQ(f.fGetASearchRec(2).Name, "");
  EXPECT_THROW(f.fGetAFullname(-1), EListError); // negative: the list's index error
  // The list itself gives zeroed records on both sides.
  EXPECT_EQ(f.fList->GetAMySearchRec(-1).Name, "");
  EXPECT_EQ(f.fList->GetAMySearchRec(2).Name, "");
  f.FillList(nullptr); // no scanner: an empty listing
  EXPECT_TRUE(f.fEmpty());
}

TEST(FolderListing, ListClearFreesHoldersAndLeavesNoSlot) {
  TMySearchRecList list;
  for (int i = 0; i < 100; ++i)
    list.AddRec(Rec(std::to_string(i)));
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  list.AddRec(Rec("again"));
  EXPECT_EQ(list.GetAMySearchRec(0).Name, "again");
} // the sanitizer run finds a holder that outlives its list

} // namespace
} // namespace kestrel
