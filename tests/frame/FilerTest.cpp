#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include <kestrel/frame/host/Host.h>

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

std::string Bytes(TMemoryStream &s) {
  return std::string(static_cast<const char *>(s.Memory()), static_cast<size_t>(s.Size()));
}

TMemoryStream *StreamOf(const std::string &bytes) {
  auto *s = new TMemoryStream;
  s->WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  s->SetPosition(0);
  return s;
}

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
  EXPECT_EQ(Bytes(s), expected);
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
  EXPECT_EQ(Bytes(s), std::string(1, '\0'));
  w.always = true;
  TMemoryStream s2;
  TWriter(&s2).WriteProperties(&w);
  EXPECT_EQ(Bytes(s2), std::string("\x05Words\x01\x00\x00", 9));
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
    std::unique_ptr<TMemoryStream> s(StreamOf(c.bytes));
    Words w;
    EXPECT_THROW(TReader(s.get()).ReadProperties(&w), EReadError) << c.what;
  }
}

TEST(SysUtils, RaiseLastOSErrorCarriesTheSystemCodeAndText) {
  try {
    RaiseLastOSError(2);
    FAIL();
  } catch (const EOSError &e) {
    EXPECT_EQ(e.ErrorCode, 2);
    EXPECT_NE(e.Message().find("Code: 2."), std::string::npos) << e.Message();
    EXPECT_NE(e.Message().find(std::strerror(2)), std::string::npos) << e.Message();
  }
  EXPECT_THROW(RaiseLastOSError(0), EOSError);
  errno = 13;
  EXPECT_EQ(GetLastOSError(), 13);
}
