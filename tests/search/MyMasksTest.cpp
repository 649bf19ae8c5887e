#include <gtest/gtest.h>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/myMasks.h>

using namespace kestrel;

namespace {
// Releases a list through its Free, as callers do.
struct Masks {
  explicit Masks(const std::string &text) : p(new TMyMasks(text)) {}
  ~Masks() { p->Free(); }
  TMyMasks *operator->() const { return p; }
  TMyMasks *p;
};
} // namespace

TEST(TMyMasks, ListSyntax) {
  struct Row {
    const char *list;
    size_t entries;
    const char *current;
  } rows[] = {{"", 0, ""},
              {"*.txt", 1, "*.txt"},
              {"*.txt;", 1, "*.txt"},
              {";*.txt", 2, "*.txt"},
              {"a;;b", 3, "a;;b"},
              {" *.txt ; *.doc ", 2, "*.txt;*.doc"},
              {"Text files (*.txt;*.doc)", 2, "*.txt;*.doc"},
              {")*.txt(", 1, ")*.txt("},
              {"(*.txt", 1, "(*.txt"},
              {"()", 0, ""}};
  for (const Row &r : rows) {
    SCOPED_TRACE(r.list);
    Masks m(r.list);
    EXPECT_EQ(m->GetEntries().size(), r.entries);
    EXPECT_EQ(m->CurrentMasks(), r.current);
  }
}

TEST(TMyMasks, Matching) {
  struct Row {
    const char *list, *name;
    bool match;
  } rows[] = {
      {"", "a.txt", false},
      {"*.txt;*.doc", "b.DOC", true},
      {"*.txt;*.doc", "b.pdf", false},
      {"*.*", "noext", true},     // matches without the mask being asked
      {" *.*", "noext", false},   // an ordinary mask: it wants a dot
      {" *.*", " x.y", true},     // and keeps its leading blank
      {"*.txt ", "a.txt", false}, // the trailing blank stays in the mask
      {"Texts (*.txt)", "a.txt", true},
      {";*.txt", "", true}, // the first entry is the empty mask
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.list) + " / " + r.name);
    Masks m(r.list);
    EXPECT_EQ(m->Matches(r.name), r.match);
  }
}

TEST(TMyMasks, ABadMaskRaisesFromCreate) {
  EXPECT_THROW(TMyMasks("*.txt;[z-a]"), EMaskException);
}
