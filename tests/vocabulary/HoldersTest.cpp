// Holders: who owns the C string, and what is copied.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

char *NewCString(const char *text) {
  char *s = StrAlloc(std::strlen(text) + 1);
  std::strcpy(s, text);
  return s;
}

// Every holder with a C string frees it exactly once, however it goes; the
// sanitizers report a leak or a second free.
TEST(Holders, CStringGoesWithItsHolderExactlyOnce) {
  using Make = TPCharOwningHolder *(*)(char *);
  const Make makers[] = {
      [](char *s) -> TPCharOwningHolder * { return new TPCharHolder(s); },
      [](char *s) -> TPCharOwningHolder * {
        return new TLongIntAndPCharHolder({s, 7});
      },
      [](char *s) -> TPCharOwningHolder * {
        return new TBooleanAndPCharHolder({s, true});
      },
      [](char *s) -> TPCharOwningHolder * {
        return new TTwoBooleanAndPCharHolder({s, true, false});
      },
  };
  for (Make make : makers) {
    char *s = NewCString("form");
    TPCharOwningHolder *viaFree = make(s);
    EXPECT_EQ(viaFree->pc, s); // the pointer itself, not a copy
    viaFree->Free();
    TObject *viaObject = make(NewCString("form"));
    viaObject->Free(); // the root class's way frees the string too
    delete make(NewCString("form"));
    make(nullptr)->Free();
  }
}

TEST(Holders, FileDetailsHolderKeepsItsOwnCopy) {
  char name[] = "/corpus/a.txt";
  auto holder = std::make_unique<TFileDetailsHolder>(FileDetails_rec{1, 2, 3, name});
  ASSERT_NE(holder->file_name, name);
  name[1] = 'X';
  EXPECT_STREQ(holder->file_name, "/corpus/a.txt");
  EXPECT_EQ(holder->detail3, 3u);
  EXPECT_EQ(TFileDetailsHolder(FileDetails_rec{0, 0, 0, nullptr}).file_name, nullptr);
}

} // namespace
} // namespace kestrel
