// The wide string lists: text and comma forms, names and values, saved forms,
// streaming, and the sorted list with its duplicates, events and languages.
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <kestrel/frame/host/Host.h>
#include <kestrel/unicode/Unicode.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

using Lines = std::vector<std::u16string>;
constexpr uint32_t kEnglish = 0x0409, kGerman = 0x0407, kSwedish = 0x041D;

Lines ItemsOf(TWideStrings &list) {
  Lines out;
  for (int32_t i = 0; i < list.GetCount(); ++i)
    out.push_back(list.Get(i));
  return out;
}

// The units as little-endian bytes.
std::string Le(std::u16string_view units) {
  std::string out;
  for (char16_t u : units)
    out += {char(u & 0xFF), char(u >> 8)};
  return out;
}

// A list filled with items, in English order unless told otherwise.
struct List : TWideStringList {
  explicit List(const Lines &items = {}, bool sorted = false) {
    SetLanguage(kEnglish);
    SetSorted(sorted);
    for (const auto &s : items)
      Add(s);
  }
};

// The message of the EStringListError a call raises, or "none".
constexpr auto Raised = &test::MessageOf<EStringListError>;

// Counts the events of a list.
struct Events {
  int changing = 0, changed = 0;
  std::function<void(TObject *)> onChanging = [this](TObject *) { ++changing; };
  std::function<void(TObject *)> onChange = [this](TObject *) { ++changed; };
  explicit Events(TWideStringList &list) {
    list.OnChanging = TNotifyEvent::Of(&onChanging);
    list.OnChange = TNotifyEvent::Of(&onChange);
  }
};

TEST(WideStrings, SetTextStrSplitsAtEveryBreak) {
  const std::pair<std::u16string, Lines> cases[] = {
      {u"a\r\n\r\nb", {u"a", u"", u"b"}},
      {u"a\n\rb", {u"a", u"", u"b"}},
      {u"a\u2028b\u2029c\u000Bd\u000Ce\rf", {u"a", u"b", u"c", u"d", u"e", u"f"}},
      {u"", {}},
      {u"a\n", {u"a"}},
      {u"\n", {u""}},
      {std::u16string(u"a\nb\0c", 5), {u"a", u"b"}}, // stops at the first 0 unit
  };
  for (const auto &[text, lines] : cases) {
    List list;
    list.SetTextStr(text);
    EXPECT_EQ(ItemsOf(list), lines) << test::Show(text);
  }
  List list({u"a", u"", u"b"});
  EXPECT_EQ(list.GetTextStr(), u"a\r\n\r\nb\r\n");
  char16_t *text = list.GetText();
  EXPECT_EQ(std::u16string(text), u"a\r\n\r\nb\r\n");
  StrDisposeW(text);
}

TEST(WideStrings, CommaTextQuotesWhatNeedsItAndReadsBack) {
  const std::pair<Lines, std::u16string> cases[] = {
      {{u"a", u"b c", u"d\"e"}, u"a, \"b c\", \"d\"\"e\","},
      {{}, u""},
      {{u""}, u"\"\""},
      {{u"", u""}, u", ,"},
      {{u"x,y", u"\u00E9"}, u"\"x,y\", \u00E9,"},
      {{u"tab\there"}, u"\"tab\there\","},
  };
  for (const auto &[items, text] : cases) {
    EXPECT_EQ(List(items).GetCommaText(), text);
    List back;
    back.SetCommaText(text);
    EXPECT_EQ(ItemsOf(back), items) << test::Show(text);
  }
  const std::pair<std::u16string, Lines> separators[] = {{u",", {u""}},
                                                         {u"a b", {u"a", u"b"}},
                                                         {u"  a ,  b  ,", {u"a", u"b"}},
                                                         {u"\"a\"b", {u"a", u"b"}},
                                                         {u"\"unterminated", {u"unterminate"}}};
  for (const auto &[text, items] : separators) {
    List list;
    list.SetCommaText(text);
    EXPECT_EQ(ItemsOf(list), items) << test::Show(text);
  }
}

TEST(WideStrings, NamesAndValues) {
  List list({u"plain", u"=empty name", u"Colour=red", u"size=", u"colour=blue"});
  EXPECT_EQ(list.GetName(0), u"");
  EXPECT_EQ(list.GetName(2), u"Colour");
  EXPECT_EQ(list.IndexOfName(u"plain"), -1); // items without "=" are skipped
  EXPECT_EQ(list.IndexOfName(u""), 1);
  EXPECT_EQ(list.IndexOfName(u"COLOUR"), 2); // case ignored, first wins
  EXPECT_EQ(list.GetValue(u"colour"), u"red");
  EXPECT_EQ(list.GetValue(u"absent"), u"");
  list.SetValue(u"size", u"large");
  list.SetValue(u"shape", u"round");
  list.SetValue(u"absent", u"");
  EXPECT_EQ(ItemsOf(list), (Lines{u"plain", u"=empty name", u"Colour=red", u"size=large",
                                  u"colour=blue", u"shape=round"}));
  list.SetValue(u"COLOUR", u""); // an empty value deletes the item
  EXPECT_EQ(list.GetValue(u"colour"), u"blue");
}

TEST(WideStrings, IndexOfIgnoresCaseButEqualsDoesNot) {
  List a({u"Alpha", u"beta"}), b({u"alpha", u"beta"});
  EXPECT_EQ(a.IndexOf(u"ALPHA"), 0);
  EXPECT_EQ(a.IndexOf(u"gamma"), -1);
  EXPECT_FALSE(a.Equals(&b));
  b.Put(0, u"Alpha");
  EXPECT_TRUE(a.Equals(&b));
  b.Add(u"x");
  EXPECT_FALSE(a.Equals(&b));
}

TEST(WideStrings, ObjectsMoveExchangeAndAppend) {
  List list;
  TObject one, two;
  list.AddObject(u"a", &one);
  list.Append(u"b");
  list.InsertObject(1, u"c", &two);
  EXPECT_EQ(list.IndexOfObject(&two), 1);
  EXPECT_EQ(list.IndexOfObject(nullptr), 2);
  list.Move(0, 2);
  EXPECT_EQ(ItemsOf(list), (Lines{u"c", u"b", u"a"}));
  EXPECT_EQ(list.GetObject(2), &one);
  list.Exchange(0, 2);
  list.Put(0, u"z"); // keeps the object
  EXPECT_EQ(ItemsOf(list), (Lines{u"z", u"b", u"c"}));
  EXPECT_EQ(list.GetObject(0), &one);
  EXPECT_EQ(list.GetObject(2), &two);
}

TEST(WideStrings, SaveForms) {
  const struct {
    Lines items;
    bool unicode;
    std::string bytes;
  } cases[] = {
      {{u""}, false, "\r\n"},
      {{}, true, "\xFF\xFE"}, // an empty list gives the mark alone
      {{u"\u20AC"}, true, "\xFF\xFE" + Le(u"\u20AC\r\n")},
  };
  for (const auto &c : cases) {
    List list(c.items);
    list.SaveUnicode = c.unicode;
    TMemoryStream s;
    list.SaveToStream(&s);
    EXPECT_EQ(test::BytesOf(s), c.bytes);
  }
}

TEST(WideStrings, LoadDetectsTheByteOrderFromThePosition) {
  const struct {
    const char *what;
    std::string bytes;
    Lines items;
    bool unicode;
  } cases[] = {
      {"little-endian", "\xFF\xFE" + Le(u"a\r\nb"), {u"a", u"b"}, true},
      {"big-endian", std::string("\xFE\xFF\0a\0\n\x20\xAC", 8), {u"a", u"\u20AC"}, true},
      {"odd byte lost", "\xFF\xFE" + Le(u"a") + "b", {u"a"}, true},
      {"plain bytes", "one\r\ntwo", {u"one", u"two"}, false},
      {"UTF-8 mark is plain text", "\xEF\xBB\xBFx", {u"\uFEFFx"}, false},
      {"empty stream", "", {}, false},
      {"one byte", "z", {u"z"}, false},
      {"mark alone", "\xFF\xFE", {}, true},
  };
  for (const auto &c : cases) {
    List list;
    list.SaveUnicode = !c.unicode;
    auto s = test::StreamOf("junk" + c.bytes);
    s->SetPosition(4); // only what follows the position is read
    list.LoadFromStream(s.get());
    EXPECT_EQ(list.SaveUnicode, c.unicode) << c.what;
    EXPECT_EQ(s->Position(), s->Size()) << c.what;
    EXPECT_EQ(ItemsOf(list), c.items) << c.what;
  }
}

TEST(WideStrings, FilesSaveLittleEndianAndRaiseTheSystemsErrors) {
  test::TempDir dir;
  dir.WriteFile("be.txt", std::string("\xFE\xFF\0h\0i\0\r\0\n", 10));
  List list;
  list.LoadFromFile(dir / "be.txt");
  EXPECT_EQ(ItemsOf(list), Lines{u"hi"});
  list.SaveToFile(dir / "le.txt");
  EXPECT_EQ(test::ReadFileBytes(dir / "le.txt"), "\xFF\xFE" + Le(u"hi\r\n"));
  EXPECT_THROW(list.SaveToFile(dir / "no-such-folder/out.txt"), EFCreateError);

  // A failed load raises the system's error with the file named.
  ::mkdir((dir / "folder").c_str(), 0755);
  errno = EPERM; // a stale error from before must not be the reason
  struct Row {
    std::string name, reason;
    int32_t code;
  } rows[] = {{"missing.txt", "No such file or directory", ENOENT},
              {"folder", "Is a directory", EISDIR}};
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
  List list({u"caf\u00E9"}); // 0xE9 fits a byte: no question
  list.OnConfirmConversion = TConfirmConversionEvent::Of(&handler);
  auto save = [&] {
    TMemoryStream s;
    list.SaveToStream(&s);
    return s.Size();
  };
  EXPECT_GT(save(), 0);
  EXPECT_EQ(asked, 0);
  list.Add(u"\u20AC");
  EXPECT_EQ(save(), 0); // refused: nothing written
  EXPECT_FALSE(list.Saved);
  answer = true;
  EXPECT_GT(save(), 0);
  EXPECT_TRUE(list.Saved);
  list.SaveUnicode = true;
  answer = false;
  EXPECT_GT(save(), 0); // never asked for a Unicode save
  EXPECT_EQ(asked, 2);
  list.SaveUnicode = false;
  list.OnConfirmConversion = nullptr;
  EXPECT_GT(save(), 0); // narrowed without question
}

TEST(WideStrings, StreamedPropertyKeepsItemsDropsObjectsAndSkipsTheAncestors) {
  List list({u"", u"\xD800\xDC00"});
  TObject obj;
  list.InsertObject(0, u"one", &obj);
  TMemoryStream s;
  TWriter(&s).WriteProperties(&list);
  s.SetPosition(0);
  List back({u"old"});
  TReader(&s).ReadProperties(&back);
  EXPECT_EQ(ItemsOf(back), ItemsOf(list));
  EXPECT_EQ(back.GetObject(0), nullptr);

  auto written = [](TWideStringList &l, TPersistent *ancestor) {
    TMemoryStream m;
    TWriter w(&m);
    w.Ancestor = ancestor;
    w.WriteProperties(&l);
    return m.Size() > 1;
  };
  List empty, full({u"x"}), same({u"x"});
  TPersistent other;
  EXPECT_FALSE(written(empty, nullptr));
  EXPECT_TRUE(written(full, nullptr));
  EXPECT_FALSE(written(full, &same));
  EXPECT_TRUE(written(full, &empty));
  EXPECT_TRUE(written(empty, &other)); // an ancestor of another class: always
}

TEST(WideStringList, CapacityGrowsByTheHostsStepsAndIndexesAreChecked) {
  List list;
  std::vector<int32_t> capacities;
  for (int i = 0; i < 77; ++i) {
    list.Add(u"w");
    if (capacities.empty() || capacities.back() != list.GetCapacity())
      capacities.push_back(list.GetCapacity());
  }
  EXPECT_EQ(capacities, (std::vector<int32_t>{4, 8, 12, 28, 44, 60, 76, 95}));
  for (auto bad : std::initializer_list<std::function<void()>>{
           [&] { list.Exchange(0, 77); }, [&] { list.Get(77); }, [&] { list.GetObject(-1); },
           [&] { list.Insert(78, u"x"); }, [&] { list.Delete(77); },
           [&] { list.PutObject(-1, nullptr); }})
    EXPECT_THROW(bad(), EStringListError);
  EXPECT_EQ(Raised([&] { list.Exchange(-1, 0); }), Format(Consts::SListIndexError, -1));
  list.Insert(77, u"end"); // at Count appends
  EXPECT_EQ(list.Get(77), u"end");
}

TEST(WideStringList, SortedListsRefusePlacedWritesBeforeAnyEvent) {
  List list({u"b", u"a"}, true);
  Events ev(list);
  EXPECT_EQ(Raised([&] { list.Put(0, u"x"); }), Consts::SSortedListError);
  EXPECT_EQ(Raised([&] { list.Insert(0, u"x"); }), Consts::SSortedListError);
  EXPECT_EQ(Raised([&] { list.Put(9, u"x"); }), Consts::SSortedListError); // tested first
  EXPECT_EQ(ev.changing, 0);
  TObject obj;
  list.PutObject(0, &obj);
  EXPECT_EQ(list.GetObject(0), &obj);
  list.Delete(0);
  EXPECT_EQ(ItemsOf(list), Lines{u"b"});
  EXPECT_EQ(ev.changing + ev.changed, 4);
}

TEST(WideStringList, DuplicatesInASortedList) {
  List list({u"pear", u"Apple", u"fig"}, true);
  EXPECT_EQ(ItemsOf(list), (Lines{u"Apple", u"fig", u"pear"}));
  Events ev(list);
  EXPECT_EQ(list.Add(u"APPLE"), 0); // ignored: the found index, nothing fires
  EXPECT_EQ(ev.changing + ev.changed, 0);
  TObject obj;
  list.AddObject(u"FIG", &obj);
  EXPECT_EQ(list.GetObject(1), &obj); // stored in the existing item
  EXPECT_EQ(list.Get(1), u"fig");

  list.Duplicates = TDuplicates::DuplicatesError;
  EXPECT_EQ(Raised([&] { list.Add(u"pEAR"); }), Consts::SDuplicateString);
  list.Duplicates = TDuplicates::DuplicatesAccept;
  list.Add(u"PEAR");
  list.Add(u"Pear");
  EXPECT_EQ(ItemsOf(list), (Lines{u"Apple", u"fig", u"Pear", u"PEAR", u"pear"}));
  int32_t index = -1;
  EXPECT_TRUE(list.Find(u"pear", index));
  EXPECT_EQ(index, 2);
  EXPECT_FALSE(list.Find(u"grape", index));
  EXPECT_EQ(index, 2);
  EXPECT_EQ(list.IndexOf(u"grape"), -1);
}

TEST(WideStringList, SortRules) {
  List list({u"c", u"a", u"b"});
  list.SetSorted(true);
  list.Exchange(0, 2); // allowed, spoils the order
  list.Sort();         // does nothing on a sorted list
  EXPECT_EQ(ItemsOf(list), (Lines{u"c", u"b", u"a"}));
  list.SetSorted(false);
  list.SetSorted(true);
  EXPECT_EQ(ItemsOf(list), (Lines{u"a", u"b", u"c"}));
  list.SetSorted(false); // the order stays
  list.Add(u"0");
  EXPECT_EQ(list.Get(3), u"0");
  List repeats;
  repeats.SetSorted(true);
  repeats.SetTextStr(u"b\na\nB\nc\na");
  EXPECT_EQ(ItemsOf(repeats), (Lines{u"a", u"b", u"c"}));
}

TEST(WideStringList, SetLanguageResortsASortedList) {
  List list({u"z", u"\u00E4r", u"ar"}), unsorted({u"z", u"\u00E4r", u"ar"});
  list.SetLanguage(kGerman);
  list.SetSorted(true);
  EXPECT_EQ(ItemsOf(list), (Lines{u"ar", u"\u00E4r", u"z"}));
  unsorted.SetLanguage(kSwedish);
  EXPECT_EQ(ItemsOf(unsorted), (Lines{u"z", u"\u00E4r", u"ar"}));
  Events ev(list);
  list.SetLanguage(kSwedish); // Swedish sorts a-diaeresis after z
  EXPECT_EQ(ItemsOf(list), (Lines{u"ar", u"z", u"\u00E4r"}));
  EXPECT_EQ(ev.changing, 1);
  EXPECT_EQ(ev.changed, 1);
}

TEST(WideStringList, UpdatesFireOnePairOfEvents) {
  List list;
  Events ev(list);
  list.Clear();
  EXPECT_EQ(ev.changing, 0); // nothing on an empty list
  list.BeginUpdate();
  list.BeginUpdate();
  list.SetTextStr(u"a\nb\nc");
  list.Delete(0);
  list.EndUpdate();
  EXPECT_EQ(ev.changing, 1);
  EXPECT_EQ(ev.changed, 0);
  list.EndUpdate();
  EXPECT_EQ(ev.changed, 1);
  list.SetCommaText(u"p, q");
  list.Add(u"r");
  EXPECT_EQ(ev.changing, 3);
  EXPECT_EQ(ev.changed, 3);
  list.Clear();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.GetCapacity(), 0);
}

TEST(WideStringList, AssignAndAddStringsBetweenWideAndByteLists) {
  TObject obj;
  List a({u"two"});
  a.InsertObject(0, u"one", &obj);
  a.SaveUnicode = true;
  List b({u"old"});
  b.Assign(&a);
  EXPECT_EQ(ItemsOf(b), ItemsOf(a));
  EXPECT_EQ(b.GetObject(0), &obj);
  EXPECT_FALSE(b.SaveUnicode); // not copied
  b.AddStrings(&b);            // adding a list to itself ends
  EXPECT_EQ(b.GetCount(), 4);
  TPersistent other;
  EXPECT_THROW(b.Assign(&other), EConvertError);

  TStringList narrow;
  narrow.AddObject("caf\xC3\xA9", &obj); // byte strings are in the system code page
  b.Assign(&narrow);
  b.AddStrings(&narrow);
  EXPECT_EQ(ItemsOf(b), (Lines{u"caf\u00E9", u"caf\u00E9"}));
  EXPECT_EQ(b.GetObject(1), &obj);
  TStringList back;
  back.Add("old");
  back.Assign(&b); // through the wide list's AssignTo
  ASSERT_EQ(back.GetCount(), 2);
  EXPECT_EQ(back.Get(0), "caf\xC3\xA9");
  EXPECT_EQ(back.GetObject(0), &obj);
}

} // namespace
} // namespace kestrel
