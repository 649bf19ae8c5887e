// The host's property streaming: the binary form of a list of wide strings.
#include <gtest/gtest.h>

#include <vector>

#include <kestrel/frame/host/Host.h>

#include "support/TestSupport.h"

using namespace kestrel;

namespace {

// An object that streams one list of wide strings, the way a wide list does.
class Words : public TPersistent {
public:
  std::vector<std::u16string> items;
  bool always = false; // write even when empty

  void DefineProperties(TFiler *filer) override {
    filer->DefineProperty("Words", TReaderProc::Bind<&Words::Read>(this),
                          TWriterProc::Bind<&Words::Write>(this), always || !items.empty());
  }
  void Read(TReader *r) {
    r->ReadListBegin();
    items.clear();
    while (!r->EndOfList())
      items.push_back(r->ReadWideString());
    r->ReadListEnd();
  }
  void Write(TWriter *w) {
    w->WriteListBegin();
    for (const auto &s : items)
      w->WriteWideString(s);
    w->WriteListEnd();
  }
};

} // namespace

TEST(Filer, WritesTheDocumentedBinaryForm) {
  Words w;
  w.items = {u"a", u"\xD800\xDC00"};
  TMemoryStream s;
  TWriter(&s).WriteProperties(&w);
  std::string expected("\x05Words\x01"
                       "\x12\x01\x00\x00\x00"
                       "a\x00"
                       "\x12\x02\x00\x00\x00"
                       "\x00\xD8\x00\xDC"
                       "\x00\x00",
                       25);
  EXPECT_EQ(test::BytesOf(s), expected);
}

TEST(Filer, RoundTripsItemsInOrderIncludingEmptyOnes) {
  Words w;
  w.items = {u"", u"x y", u"\xFFFF", u"", std::u16string(300, u'q')};
  TMemoryStream s;
  TWriter(&s).WriteProperties(&w);
  s.SetPosition(0);
  Words back;
  back.items = {u"old"};
  TReader(&s).ReadProperties(&back);
  EXPECT_EQ(back.items, w.items);
  EXPECT_EQ(s.Position(), s.Size());
}

TEST(Filer, APropertyWithoutDataIsNotWritten) {
  Words w;
  TMemoryStream s;
  TWriter(&s).WriteProperties(&w);
  EXPECT_EQ(test::BytesOf(s), std::string(1, '\0'));
  w.always = true;
  TMemoryStream s2;
  TWriter(&s2).WriteProperties(&w);
  EXPECT_EQ(test::BytesOf(s2), std::string("\x05Words\x01\x00\x00", 9));
}

TEST(Filer, BadStreamsRaiseReadErrors) {
  struct Case {
    const char *what;
    std::string bytes;
  } cases[] = {
      {"unknown property", std::string("\x05Other\x01\x00\x00", 9)},
      {"wrong tag", std::string("\x05Words\x02\x00\x00", 9)},
      {"string tag wrong", std::string("\x05Words\x01\x07\x00\x00", 10)},
      {"cut in the name", std::string("\x05Wo", 3)},
      {"cut in a string", std::string("\x05Words\x01\x12\x02\x00\x00\x00"
                                      "a",
                                      13)},
      {"huge count", std::string("\x05Words\x01\x12\xFF\xFF\xFF\xFF"
                                 "ab",
                                 14)},
      {"no list end", std::string("\x05Words\x01", 7)},
      {"no closing name", std::string("\x05Words\x01\x00", 8)},
  };
  for (const auto &c : cases) {
    auto s = test::StreamOf(c.bytes);
    Words w;
    EXPECT_THROW(TReader(s.get()).ReadProperties(&w), EReadError) << c.what;
  }
}
