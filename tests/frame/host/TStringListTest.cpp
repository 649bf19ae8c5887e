// The host's string list: order, objects, sorting, text forms, events, files.
#include <gtest/gtest.h>

#include <functional>

#include <kestrel/frame/host/Host.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::LinesOf;

namespace {

using V = std::vector<std::string>;

} // namespace

TEST(TStringList, UnsortedKeepsOrderAndObjects) {
  TStringList l;
  TObject a, b;
  EXPECT_EQ(l.Add("one"), 0);
  EXPECT_EQ(l.AddObject("two", &a), 1);
  l.InsertObject(0, "zero", &b);
  EXPECT_EQ(LinesOf(l), (V{"zero", "one", "two"}));
  EXPECT_EQ(l.Objects(0), &b);
  EXPECT_EQ(l.Objects(1), nullptr);
  EXPECT_EQ(l.Objects(2), &a);
  EXPECT_EQ(l.IndexOf("TWO"), 2); // without case
  EXPECT_EQ(l.IndexOfObject(&a), 2);
  l.Put(1, "uno");
  l.Exchange(0, 2);
  EXPECT_EQ(LinesOf(l), (V{"two", "uno", "zero"}));
  EXPECT_EQ(l.Objects(0), &a);
  l.Move(0, 2);
  EXPECT_EQ(LinesOf(l), (V{"uno", "zero", "two"}));
  EXPECT_EQ(l.Objects(2), &a);
  l.Delete(0);
  EXPECT_EQ(LinesOf(l), (V{"zero", "two"}));
}

TEST(TStringList, BadIndexesAndPlacedWritesToSortedListsRaise) {
  TStringList l;
  l.Add("x");
  const std::pair<std::function<void()>, std::string> calls[] = {
      {[&] { l.Get(-1); }, "List index out of bounds (-1)"},
      {[&] { l.Get(1); }, "List index out of bounds (1)"},
      {[&] { l.Delete(1); }, "List index out of bounds (1)"},
      {[&] { l.Insert(2, "y"); }, "List index out of bounds (2)"},
      {[&] { l.PutObject(1, nullptr); }, "List index out of bounds (1)"},
      {[&] {
         l.SetSorted(true);
         l.Insert(0, "b");
       },
       Consts::SSortedListError},
      {[&] { l.Put(0, "b"); }, Consts::SSortedListError}};
  for (const auto &[call, message] : calls)
    EXPECT_EQ(test::MessageOf<EStringListError>(call), message);
  EXPECT_EQ(LinesOf(l), V{"x"});
}

TEST(TStringList, SortedWithDuplicatesRules) {
  struct Case {
    TDuplicates dup;
    V expected;
    bool raises;
  } cases[] = {{TDuplicates::DuplicatesIgnore, {"apple", "Banana", "cherry"}, false},
               {TDuplicates::DuplicatesAccept, {"apple", "BANANA", "Banana", "cherry"}, false},
               {TDuplicates::DuplicatesError, {"apple", "Banana", "cherry"}, true}};
  for (const Case &c : cases) {
    TStringList l;
    l.SetSorted(true);
    l.Duplicates = c.dup;
    l.Add("cherry");
    l.Add("Banana");
    l.Add("apple");
    if (c.raises) {
      EXPECT_THROW(l.Add("BANANA"), EStringListError);
    } else {
      EXPECT_EQ(l.Add("BANANA"), 1);
    }
    EXPECT_EQ(LinesOf(l), c.expected);
  }
}

TEST(TStringList, FindGivesTheFirstPlaceOrTheInsertionPoint) {
  TStringList l;
  l.Duplicates = TDuplicates::DuplicatesAccept;
  l.SetSorted(true);
  for (const char *s : {"b", "d", "d", "D", "f"})
    l.Add(s);
  int32_t i;
  EXPECT_TRUE(l.Find("d", i));
  EXPECT_EQ(i, 1);
  EXPECT_FALSE(l.Find("c", i));
  EXPECT_EQ(i, 1);
  EXPECT_FALSE(l.Find("z", i));
  EXPECT_EQ(i, 5);
  EXPECT_FALSE(l.Find("a", i));
  EXPECT_EQ(i, 0);
  EXPECT_EQ(l.IndexOf("F"), 4);
  EXPECT_EQ(l.IndexOf("e"), -1);
}

TEST(TStringList, CaseSensitivityChangesOrderAndSearch) {
  TStringList l;
  for (const char *s : {"b", "B", "a", "A"})
    l.Add(s);
  l.SetCaseSensitive(true);
  l.SetSorted(true);
  EXPECT_EQ(LinesOf(l), (V{"A", "B", "a", "b"}));
  EXPECT_EQ(l.IndexOf("a"), 2);
  l.SetCaseSensitive(false); // re-sorts: equal items keep their order
  EXPECT_EQ(LinesOf(l), (V{"A", "a", "B", "b"}));
  EXPECT_EQ(l.IndexOf("b"), 2);
}

TEST(TStringList, CustomSortUsesTheIndexCompare) {
  TStringList l;
  for (const char *s : {"ccc", "a", "bb", "dddd", ""})
    l.Add(s);
  l.CustomSort([](TStringList *list, int32_t i, int32_t j) {
    return static_cast<int>(list->Get(j).size()) - static_cast<int>(list->Get(i).size());
  });
  EXPECT_EQ(LinesOf(l), (V{"dddd", "ccc", "bb", "a", ""}));
}

TEST(TStringList, TextSplitsAtEveryLineEnd) {
  TStringList l;
  l.SetText("one\r\ntwo\nthree\rfour\r\n\r\nsix");
  EXPECT_EQ(LinesOf(l), (V{"one", "two", "three", "four", "", "six"}));
  EXPECT_EQ(l.Text(), "one\r\ntwo\r\nthree\r\nfour\r\n\r\nsix\r\n");
  l.SetText("");
  EXPECT_EQ(l.Count(), 0);
}

TEST(TStringList, NamesAndValues) {
  TStringList l;
  l.SetText("Key=1\nother=two=2\nplain");
  EXPECT_EQ(l.Values("key"), "1");
  EXPECT_EQ(l.Values("OTHER"), "two=2");
  EXPECT_EQ(l.Names(2), "");
  EXPECT_EQ(l.IndexOfName("plain"), -1);
  l.SetValue("new", "x");
  EXPECT_EQ(l[3], "new=x");
  l.SetValue("key", "");
  EXPECT_EQ(LinesOf(l), (V{"other=two=2", "plain", "new=x"}));
}

TEST(TStringList, CommaTextQuotesAndSplits) {
  TStringList l;
  l.SetCommaText(R"(a, "b c",d"e  ,"x""y",, last)");
  EXPECT_EQ(LinesOf(l), (V{"a", "b c", "d\"e", "x\"y", "", "last"}));
  EXPECT_EQ(l.CommaText(), R"(a,"b c","d""e","x""y",,last)");
  l.SetCommaText("one two,");
  EXPECT_EQ(LinesOf(l), (V{"one", "two", ""})); // blanks separate, a last comma adds one
  l.Clear();
  l.Add("");
  EXPECT_EQ(l.CommaText(), "\"\"");
}

TEST(TStringList, EventsFireOutsideUpdates) {
  TStringList l;
  int changing = 0, changed = 0;
  auto onChanging = [&](TObject *s) {
    EXPECT_EQ(s, &l);
    ++changing;
  };
  auto onChange = [&](TObject *) { ++changed; };
  l.OnChanging = TNotifyEvent::Of(&onChanging);
  l.OnChange = TNotifyEvent::Of(&onChange);
  l.Add("a");
  EXPECT_EQ(changing, 1);
  EXPECT_EQ(changed, 1);
  l.BeginUpdate();
  l.Add("b");
  l.Add("c");
  l.BeginUpdate();
  l.Delete(0);
  l.EndUpdate();
  EXPECT_EQ(changed, 1);
  l.EndUpdate();
  EXPECT_EQ(changing, 2);
  EXPECT_EQ(changed, 2);
}

TEST(TStringList, StreamsFilesAndAssignCopyTheItems) {
  kestrel::test::TempDir dir;
  TStringList l;
  l.SetText("alpha\nbeta\n\ngamma");
  l.SaveToFile(dir / "l.txt");
  EXPECT_EQ(kestrel::test::ReadFileBytes(dir / "l.txt"), "alpha\r\nbeta\r\n\r\ngamma\r\n");
  TStringList m;
  m.Add("dropped");
  m.LoadFromFile(dir / "l.txt");
  EXPECT_TRUE(m.Equals(l));
  TObject o;
  m.PutObject(1, &o);
  l.Assign(&m); // strings and objects
  EXPECT_TRUE(l.Equals(m));
  EXPECT_EQ(l.Objects(1), &o);

  TMemoryStream s;
  s.WriteBuffer("head|", 5);
  l.SaveToStream(&s);
  s.SetPosition(5); // only what follows the position is read
  TStringList n;
  n.LoadFromStream(&s);
  EXPECT_TRUE(n.Equals(l));
}
