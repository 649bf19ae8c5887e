#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <kestrel/frame/host/Host.h>
#include <kestrel/unicode/Unicode.h>

#include "TestSupport.h"

using namespace kestrel;

namespace {

using Items = std::vector<std::u16string>;

Items ItemsOf(TWideStrings &list) {
  Items out;
  for (int32_t i = 0; i < list.GetCount(); ++i)
    out.push_back(list.Get(i));
  return out;
}

void Fill(TWideStrings &list, const Items &items) {
  for (const auto &s : items)
    list.Add(s);
}

std::string StreamBytes(TMemoryStream &s) {
  return std::string(static_cast<const char *>(s.Memory()), static_cast<size_t>(s.Size()));
}

std::unique_ptr<TMemoryStream> StreamOf(const std::string &bytes) {
  auto s = std::make_unique<TMemoryStream>();
  s->WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  s->SetPosition(0);
  return s;
}

// Counts the events of a list.
struct Events {
  int changing = 0, changed = 0;
  std::function<void(TObject *)> onChanging = [this](TObject *) { ++changing; };
  std::function<void(TObject *)> onChange = [this](TObject *) { ++changed; };
  void Attach(TWideStringList &list) {
    list.OnChanging = TNotifyEvent::Of(&onChanging);
    list.OnChange = TNotifyEvent::Of(&onChange);
  }
};

constexpr uint32_t kEnglish = 0x0409;

} // namespace

// ---- Lines

TEST(WideStrings, SetTextStrSplitsAtEveryBreak) {
  struct Case {
    std::u16string text;
    Items lines;
  } cases[] = {
      {u"a\r\n\r\nb", {u"a", u"", u"b"}},
      {u"a\n\rb", {u"a", u"", u"b"}},
      {u"a\u2028b", {u"a", u"b"}},
      {u"a\u2029b\u000Bc\u000Cd\re", {u"a", u"b", u"c", u"d", u"e"}},
      {u"", {}},
      {u"a\n", {u"a"}},
      {u"\n", {u""}},
      {u"a\n\nb", {u"a", u"", u"b"}},
      {std::u16string(u"a\nb\0c", 5), {u"a", u"b"}}, // stops at the first 0 unit
  };
  for (const auto &c : cases) {
    TWideStringList list;
    list.SetTextStr(c.text);
    EXPECT_EQ(ItemsOf(list), c.lines) << std::string(c.text.begin(), c.text.end());
  }
}

TEST(WideStrings, GetTextStrEndsEveryItemWithCrLf) {
  TWideStringList list;
  EXPECT_EQ(list.GetTextStr(), u"");
  Fill(list, {u"a", u"", u"b"});
  EXPECT_EQ(list.GetTextStr(), u"a\r\n\r\nb\r\n");
  char16_t *text = list.GetText();
  EXPECT_EQ(std::u16string(text), u"a\r\n\r\nb\r\n");
  StrDisposeW(text);
  list.SetText(u"x\ny");
  EXPECT_EQ(ItemsOf(list), (Items{u"x", u"y"}));
}

// ---- Comma text

TEST(WideStrings, CommaTextQuotesWhatNeedsIt) {
  struct Case {
    Items items;
    std::u16string text;
  } cases[] = {
      {{u"a", u"b c", u"d\"e"}, u"a, \"b c\", \"d\"\"e\","},
      {{}, u""},
      {{u""}, u"\"\""},
      {{u"", u""}, u", ,"},
      {{u"x,y", u"\u00E9"}, u"\"x,y\", \u00E9,"},
      {{u"tab\there"}, u"\"tab\there\","},
  };
  for (const auto &c : cases) {
    TWideStringList list;
    Fill(list, c.items);
    EXPECT_EQ(list.GetCommaText(), c.text);
    TWideStringList back;
    back.SetCommaText(c.text);
    EXPECT_EQ(ItemsOf(back), c.items) << "read back";
  }
}

TEST(WideStrings, SetCommaTextSeparators) {
  struct Case {
    std::u16string text;
    Items items;
  } cases[] = {
      {u",", {u""}},
      {u"a,,b", {u"a", u"", u"b"}},
      {u"a b", {u"a", u"b"}},
      {u"  a ,  b  ,", {u"a", u"b"}},
      {u"\"unterminated", {u"unterminate"}},
      {u"\"\"", {u""}},
      {u"\"a\"b", {u"a", u"b"}},
  };
  for (const auto &c : cases) {
    TWideStringList list;
    list.SetCommaText(c.text);
    EXPECT_EQ(ItemsOf(list), c.items) << std::string(c.text.begin(), c.text.end());
  }
}

// ---- Names and values, IndexOf, Equals

TEST(WideStrings, NamesAndValues) {
  TWideStringList list;
  list.SetLanguage(kEnglish);
  Fill(list, {u"plain", u"=empty name", u"Colour=red", u"size=", u"colour=blue"});
  EXPECT_EQ(list.GetName(0), u"");
  EXPECT_EQ(list.GetName(1), u"");
  EXPECT_EQ(list.GetName(2), u"Colour");
  EXPECT_EQ(list.IndexOfName(u"plain"), -1); // items without "=" are skipped
  EXPECT_EQ(list.IndexOfName(u""), 1);
  EXPECT_EQ(list.IndexOfName(u"COLOUR"), 2); // case ignored, first wins
  EXPECT_EQ(list.GetValue(u"colour"), u"red");
  EXPECT_EQ(list.GetValue(u"size"), u"");
  EXPECT_EQ(list.GetValue(u"absent"), u"");

  list.SetValue(u"size", u"large");
  EXPECT_EQ(list.Get(3), u"size=large");
  list.SetValue(u"shape", u"round");
  EXPECT_EQ(list.Get(5), u"shape=round");
  list.SetValue(u"absent", u"");
  EXPECT_EQ(list.GetCount(), 6);
  list.SetValue(u"COLOUR", u"");
  EXPECT_EQ(list.GetCount(), 5);
  EXPECT_EQ(list.GetValue(u"colour"), u"blue");
}

TEST(WideStrings, IndexOfIgnoresCaseButEqualsDoesNot) {
  TWideStringList a, b;
  a.SetLanguage(kEnglish);
  Fill(a, {u"Alpha", u"beta"});
  Fill(b, {u"alpha", u"beta"});
  EXPECT_EQ(a.IndexOf(u"ALPHA"), 0);
  EXPECT_EQ(a.IndexOf(u"gamma"), -1);
  EXPECT_FALSE(a.Equals(&b));
  b.Put(0, u"Alpha");
  EXPECT_TRUE(a.Equals(&b));
  b.Add(u"x");
  EXPECT_FALSE(a.Equals(&b));
}

TEST(WideStrings, ObjectsMoveExchangeAndAppend) {
  TWideStringList list;
  TObject one, two;
  list.AddObject(u"a", &one);
  list.Append(u"b");
  list.InsertObject(1, u"c", &two);
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"c", u"b"}));
  EXPECT_EQ(list.IndexOfObject(&two), 1);
  EXPECT_EQ(list.IndexOfObject(nullptr), 2);
  list.Move(0, 2);
  EXPECT_EQ(ItemsOf(list), (Items{u"c", u"b", u"a"}));
  EXPECT_EQ(list.GetObject(2), &one);
  list.Exchange(0, 2);
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"b", u"c"}));
  EXPECT_EQ(list.GetObject(0), &one);
  EXPECT_EQ(list.GetObject(2), &two);
  list.Put(0, u"z"); // keeps the object
  EXPECT_EQ(list.GetObject(0), &one);
}

// ---- Save and load

TEST(WideStrings, SaveForms) {
  TWideStringList list;
  list.Add(u"");
  TMemoryStream plain;
  list.SaveToStream(&plain);
  EXPECT_EQ(StreamBytes(plain), "\r\n");
  EXPECT_TRUE(list.Saved);

  list.SaveUnicode = true;
  list.Clear();
  TMemoryStream mark;
  list.SaveToStream(&mark);
  EXPECT_EQ(StreamBytes(mark), "\xFF\xFE"); // an empty list gives the mark alone

  list.Add(u"\u20AC");
  TMemoryStream unicode;
  list.SaveToStream(&unicode);
  EXPECT_EQ(StreamBytes(unicode), std::string("\xFF\xFE\xAC\x20\r\0\n\0", 8));
}

TEST(WideStrings, LoadDetectsTheByteOrder) {
  struct Case {
    const char *what;
    std::string bytes;
    Items items;
    bool unicode;
  } cases[] = {
      {"little-endian",
       std::string("\xFF\xFE"
                   "a\0\r\0\n\0"
                   "b\0",
                   10),
       {u"a", u"b"},
       true},
      {"big-endian", std::string("\xFE\xFF\0a\0\n\x20\xAC", 8), {u"a", u"\u20AC"}, true},
      {"odd byte lost",
       std::string("\xFF\xFE"
                   "a\0"
                   "b",
                   5),
       {u"a"},
       true},
      {"plain bytes", "one\r\ntwo", {u"one", u"two"}, false},
      {"UTF-8 mark is plain text", "\xEF\xBB\xBFx", {}, false},
      {"empty stream", "", {}, false},
      {"one byte", "z", {u"z"}, false},
      {"mark alone", "\xFF\xFE", {}, true},
  };
  for (const auto &c : cases) {
    TWideStringList list;
    list.SaveUnicode = !c.unicode;
    auto s = StreamOf(c.bytes);
    list.LoadFromStream(s.get());
    EXPECT_EQ(list.SaveUnicode, c.unicode) << c.what;
    EXPECT_EQ(s->Position(), s->Size()) << c.what; // everything was taken
    if (std::string(c.what) != "UTF-8 mark is plain text")
      EXPECT_EQ(ItemsOf(list), c.items) << c.what;
    else
      EXPECT_EQ(list.GetCount(), 1) << c.what; // decoded as the system's code page
  }
}

TEST(WideStrings, LoadStartsAtTheStreamPosition) {
  auto s = StreamOf(std::string("junk\xFF\xFE"
                                "q\0",
                                8));
  s->SetPosition(4);
  TWideStringList list;
  list.LoadFromStream(s.get());
  EXPECT_TRUE(list.SaveUnicode);
  EXPECT_EQ(ItemsOf(list), Items{u"q"});
}

TEST(WideStrings, BigEndianFileSavesBackLittleEndian) {
  test::TempDir dir;
  dir.WriteFile("be.txt", std::string("\xFE\xFF\0h\0i\0\r\0\n", 10));
  TWideStringList list;
  list.LoadFromFile(dir / "be.txt");
  EXPECT_EQ(ItemsOf(list), Items{u"hi"});
  list.SaveToFile(dir / "le.txt");
  EXPECT_EQ(test::ReadFileBytes(dir / "le.txt"), std::string("\xFF\xFEh\0i\0\r\0\n\0", 10));
}

TEST(WideStrings, LoadFromFileRaisesTheSystemErrorWithTheFileNamed) {
  test::TempDir dir;
  ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0644), 0);
  ::mkdir((dir / "folder").c_str(), 0755);
  errno = EPERM; // a stale error from before must not be the reason
  struct Row {
    std::string name, reason;
    int32_t code;
  } rows[] = {{"missing.txt", "No such file or directory", ENOENT},
              {"folder", "Is a directory", EISDIR},
              {"pipe", "FIFO", ENXIO}};
  for (const Row &r : rows) {
    SCOPED_TRACE(r.name);
    TWideStringList list;
    try {
      list.LoadFromFile(dir / r.name);
      ADD_FAILURE() << "no exception";
    } catch (const EOSError &e) {
      EXPECT_EQ(e.ErrorCode, r.code);
      EXPECT_NE(e.Message().find(dir / r.name), std::string::npos) << e.Message();
      EXPECT_NE(e.Message().find(r.reason), std::string::npos) << e.Message();
    }
  }
}

TEST(WideStrings, ConfirmConversionIsAskedOnlyForLoss) {
  int asked = 0;
  bool answer = false;
  std::function<void(TWideStrings *, bool &)> handler = [&](TWideStrings *, bool &allowed) {
    ++asked;
    allowed = answer;
  };
  TWideStringList list;
  list.OnConfirmConversion = TConfirmConversionEvent::Of(&handler);

  list.Add(u"caf\u00E9"); // 0xE9 fits a byte: no question
  TMemoryStream s1;
  list.SaveToStream(&s1);
  EXPECT_EQ(asked, 0);
  EXPECT_TRUE(list.Saved);

  list.Add(u"\u20AC");
  TMemoryStream s2;
  list.SaveToStream(&s2);
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(list.Saved);
  EXPECT_EQ(s2.Size(), 0);

  answer = true;
  TMemoryStream s3;
  list.SaveToStream(&s3);
  EXPECT_EQ(asked, 2);
  EXPECT_TRUE(list.Saved);
  EXPECT_GT(s3.Size(), 0);

  list.SaveUnicode = true;
  answer = false;
  TMemoryStream s4;
  list.SaveToStream(&s4);
  EXPECT_EQ(asked, 2); // never asked for a Unicode save
  EXPECT_TRUE(list.Saved);

  list.SaveUnicode = false;
  list.OnConfirmConversion = nullptr;
  TMemoryStream s5;
  list.SaveToStream(&s5);
  EXPECT_TRUE(list.Saved); // narrowed without question
}

// ---- Host streaming of the items

TEST(WideStrings, StreamedPropertyKeepsItemsAndDropsObjects) {
  TWideStringList list;
  TObject obj;
  list.AddObject(u"one", &obj);
  list.Add(u"");
  list.Add(u"\xD800\xDC00");
  TMemoryStream s;
  TWriter(&s).WriteProperties(&list);
  s.SetPosition(0);
  TWideStringList back;
  back.Add(u"old");
  TReader(&s).ReadProperties(&back);
  EXPECT_EQ(ItemsOf(back), ItemsOf(list));
  EXPECT_EQ(back.GetObject(0), nullptr);
}

TEST(WideStrings, PropertyIsWrittenOnlyWhenItDiffers) {
  auto written = [](TWideStringList &list, TPersistent *ancestor) {
    TMemoryStream s;
    TWriter w(&s);
    w.Ancestor = ancestor;
    w.WriteProperties(&list);
    return s.Size() > 1;
  };
  TWideStringList empty, full, same;
  full.Add(u"x");
  same.Add(u"x");
  TPersistent other;
  EXPECT_FALSE(written(empty, nullptr));
  EXPECT_TRUE(written(full, nullptr));
  EXPECT_FALSE(written(full, &same));
  EXPECT_TRUE(written(full, &empty));
  EXPECT_TRUE(written(empty, &other)); // an ancestor of another class: always
}

// ---- TWideStringList

TEST(WideStringList, CapacityGrowsByTheHostsSteps) {
  TWideStringList list;
  EXPECT_EQ(list.GetCapacity(), 0);
  std::vector<std::pair<int, int>> expected = {{1, 4}, {5, 8}, {9, 12}, {13, 28}, {77, 95}};
  int added = 0;
  for (auto [count, capacity] : expected) {
    while (added < count) {
      list.Add(u"w");
      ++added;
    }
    EXPECT_EQ(list.GetCapacity(), capacity) << count;
  }
}

TEST(WideStringList, IndexErrorsCarryTheIndex) {
  TWideStringList list;
  Fill(list, {u"a", u"b"});
  auto message = [&](auto fn) -> std::string {
    try {
      fn();
    } catch (const EStringListError &e) {
      return e.Message();
    }
    return "no error";
  };
  EXPECT_EQ(message([&] { list.Get(2); }), Format(Consts::SListIndexError, 2));
  EXPECT_EQ(message([&] { list.GetObject(-1); }), Format(Consts::SListIndexError, -1));
  EXPECT_EQ(message([&] { list.Insert(3, u"x"); }), Format(Consts::SListIndexError, 3));
  EXPECT_EQ(message([&] { list.Exchange(5, 7); }), Format(Consts::SListIndexError, 5));
  EXPECT_EQ(message([&] { list.Exchange(0, 7); }), Format(Consts::SListIndexError, 7));
  EXPECT_EQ(message([&] { list.Delete(2); }), Format(Consts::SListIndexError, 2));
  EXPECT_EQ(message([&] { list.PutObject(9, nullptr); }), Format(Consts::SListIndexError, 9));
  list.Insert(2, u"c"); // at Count appends
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"b", u"c"}));
}

TEST(WideStringList, SortedListsRefuseTheirErrorsBeforeAnyEvent) {
  TWideStringList list;
  list.SetLanguage(kEnglish);
  Fill(list, {u"b", u"a"});
  list.SetSorted(true);
  Events ev;
  ev.Attach(list);
  EXPECT_THROW(list.Put(0, u"x"), EStringListError);
  EXPECT_THROW(list.Insert(0, u"x"), EStringListError);
  EXPECT_THROW(list.Put(9, u"x"), EStringListError); // sorted is tested first
  EXPECT_EQ(ev.changing, 0);
  TObject obj;
  list.PutObject(0, &obj);
  EXPECT_EQ(list.GetObject(0), &obj);
  list.Delete(0);
  EXPECT_EQ(ItemsOf(list), Items{u"b"});
  EXPECT_EQ(ev.changing, 2);
  EXPECT_EQ(ev.changed, 2);
}

// The modes carry the names and ordinals of the stored enumeration; a new list
// ignores duplicates.
TEST(WideStringList, DuplicateModesAreNamedAndNumbered) {
  EXPECT_EQ(uint8_t(TDuplicates::DuplicatesIgnore), 0);
  EXPECT_EQ(uint8_t(TDuplicates::DuplicatesAccept), 1);
  EXPECT_EQ(uint8_t(TDuplicates::DuplicatesError), 2);
  EXPECT_EQ(TWideStringList().Duplicates, TDuplicates::DuplicatesIgnore);
}

TEST(WideStringList, DuplicatesInASortedList) {
  TWideStringList list;
  list.SetLanguage(kEnglish);
  list.SetSorted(true);
  Fill(list, {u"pear", u"Apple", u"fig"});
  EXPECT_EQ(ItemsOf(list), (Items{u"Apple", u"fig", u"pear"}));

  Events ev;
  ev.Attach(list);
  EXPECT_EQ(list.Add(u"APPLE"), 0); // ignored: the found index, nothing fires
  EXPECT_EQ(list.GetCount(), 3);
  EXPECT_EQ(ev.changing + ev.changed, 0);
  TObject obj;
  list.AddObject(u"FIG", &obj);
  EXPECT_EQ(list.GetObject(1), &obj); // stored in the existing item
  EXPECT_EQ(list.Get(1), u"fig");

  list.Duplicates = TDuplicates::DuplicatesError;
  try {
    list.Add(u"pEAR");
    FAIL();
  } catch (const EStringListError &e) {
    EXPECT_EQ(e.Message(), Consts::SDuplicateString);
  }
  EXPECT_EQ(list.GetCount(), 3);

  list.Duplicates = TDuplicates::DuplicatesAccept;
  list.Add(u"PEAR");
  list.Add(u"Pear");
  EXPECT_EQ(ItemsOf(list), (Items{u"Apple", u"fig", u"Pear", u"PEAR", u"pear"}));
  int32_t index = -1;
  EXPECT_TRUE(list.Find(u"pear", index));
  EXPECT_EQ(index, 2);
  EXPECT_FALSE(list.Find(u"grape", index));
  EXPECT_EQ(index, 2);
  EXPECT_EQ(list.IndexOf(u"PEAR"), 2);
  EXPECT_EQ(list.IndexOf(u"grape"), -1);
}

TEST(WideStringList, SortRules) {
  TWideStringList list;
  list.SetLanguage(kEnglish);
  Fill(list, {u"c", u"a", u"b"});
  list.SetSorted(true);
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"b", u"c"}));
  list.Exchange(0, 2); // allowed, spoils the order
  list.Sort();         // does nothing on a sorted list
  EXPECT_EQ(ItemsOf(list), (Items{u"c", u"b", u"a"}));
  list.SetSorted(false);
  list.SetSorted(true);
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"b", u"c"}));
  list.SetSorted(false); // the order stays
  list.Add(u"0");
  EXPECT_EQ(list.Get(3), u"0");
}

TEST(WideStringList, QuickSortOrdersManyItems) {
  TWideStringList list;
  list.SetLanguage(kEnglish);
  std::vector<std::u16string> words;
  for (int i = 0; i < 500; ++i) {
    std::string w = std::to_string((i * 7919) % 1000);
    words.emplace_back(u"w" + std::u16string(w.begin(), w.end()));
  }
  Fill(list, words);
  list.Sort();
  for (int32_t i = 1; i < list.GetCount(); ++i)
    EXPECT_LE(WideCompareText(list.Get(i - 1), list.Get(i), kEnglish), 0) << i;
  EXPECT_EQ(list.GetCount(), 500);
}

TEST(WideStringList, SetLanguageResortsASortedList) {
  const uint32_t german = 0x0407, swedish = 0x041D;
  TWideStringList list;
  list.SetLanguage(german);
  Fill(list, {u"z", u"\u00E4r", u"ar"});
  TWideStringList unsorted;
  Fill(unsorted, {u"z", u"\u00E4r", u"ar"});
  unsorted.SetLanguage(swedish);
  EXPECT_EQ(ItemsOf(unsorted), (Items{u"z", u"\u00E4r", u"ar"}));
  list.SetSorted(true);
  EXPECT_EQ(ItemsOf(list), (Items{u"ar", u"\u00E4r", u"z"}));
  Events ev;
  ev.Attach(list);
  list.SetLanguage(swedish);
  EXPECT_EQ(ItemsOf(list), (Items{u"ar", u"z", u"\u00E4r"}));
  EXPECT_EQ(ev.changing, 1);
  EXPECT_EQ(ev.changed, 1);
}

TEST(WideStringList, UpdatesFireOnePairOfEvents) {
  TWideStringList list;
  Events ev;
  ev.Attach(list);
  list.BeginUpdate();
  list.BeginUpdate();
  Fill(list, {u"a", u"b", u"c"});
  list.Delete(0);
  list.EndUpdate();
  EXPECT_EQ(ev.changing, 1);
  EXPECT_EQ(ev.changed, 0);
  list.EndUpdate();
  EXPECT_EQ(ev.changed, 1);

  list.SetTextStr(u"x\ny\nz");
  list.SetCommaText(u"p, q");
  EXPECT_EQ(ev.changing, 3);
  EXPECT_EQ(ev.changed, 3);
  list.Add(u"r");
  EXPECT_EQ(ev.changing, 4);
}

TEST(WideStringList, ClearAndDelete) {
  TWideStringList list;
  Events ev;
  ev.Attach(list);
  list.Clear();
  EXPECT_EQ(ev.changing, 0); // nothing on an empty list
  Fill(list, {u"a", u"b", u"c"});
  list.Delete(2);
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"b"}));
  EXPECT_EQ(list.GetCapacity(), 4);
  list.Delete(0);
  EXPECT_EQ(ItemsOf(list), Items{u"b"});
  list.Clear();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.GetCapacity(), 0);
}

TEST(WideStringList, SortedSetTextStrSortsAndDropsRepeats) {
  TWideStringList list;
  list.SetLanguage(kEnglish);
  list.SetSorted(true);
  list.SetTextStr(u"b\na\nB\nc\na");
  EXPECT_EQ(ItemsOf(list), (Items{u"a", u"b", u"c"}));
}

TEST(WideStringList, AssignAndAddStringsBetweenWideLists) {
  TWideStringList a, b;
  TObject obj;
  a.AddObject(u"one", &obj);
  a.Add(u"two");
  a.SaveUnicode = true;
  b.Add(u"old");
  b.Assign(&a);
  EXPECT_EQ(ItemsOf(b), ItemsOf(a));
  EXPECT_EQ(b.GetObject(0), &obj);
  EXPECT_FALSE(b.SaveUnicode); // not copied
  b.AddStrings(&b);            // adding a list to itself ends
  EXPECT_EQ(ItemsOf(b), (Items{u"one", u"two", u"one", u"two"}));
  TPersistent other;
  EXPECT_THROW(b.Assign(&other), EConvertError);
}

TEST(WideStringList, AssignBetweenByteAndWideLists) {
  TObject obj;
  TStringList narrow;
  narrow.AddObject("caf\xC3\xA9", &obj); // byte strings are in the system code page
  narrow.Add("x");
  TWideStringList wide;
  wide.Add(u"old");
  wide.Assign(&narrow);
  EXPECT_EQ(ItemsOf(wide), (Items{u"caf\u00E9", u"x"}));
  EXPECT_EQ(wide.GetObject(0), &obj);
  wide.AddStrings(&narrow);
  EXPECT_EQ(wide.GetCount(), 4);

  TStringList back;
  back.Add("old");
  back.Assign(&wide); // through the wide list's AssignTo
  ASSERT_EQ(back.GetCount(), 4);
  EXPECT_EQ(back.Get(0), "caf\xC3\xA9");
  EXPECT_EQ(back.GetObject(0), &obj);
}

TEST(WideStrings, SaveToFilePassesOnTheStreamError) {
  test::TempDir dir;
  TWideStringList list;
  list.Add(u"x");
  EXPECT_THROW(list.SaveToFile(dir / "no-such-folder/out.txt"), EFCreateError);
  list.SaveToFile(dir / "out.txt");
  EXPECT_EQ(test::ReadFileBytes(dir / "out.txt"), "x\r\n");
  TWideStringList back;
  back.LoadFromFile(dir / "out.txt");
  EXPECT_EQ(ItemsOf(back), Items{u"x"});
}
