// The list of lemma entries owns the lists of forms, and they their strings.
#include <gtest/gtest.h>

#include <cstring>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

int gListsFreed = 0;

struct CountedForms : TPcharList {
  ~CountedForms() override { ++gListsFreed; }
};

CountedForms *Forms(std::initializer_list<const char *> words) {
  auto *forms = new CountedForms;
  for (const char *w : words) {
    char *s = StrAlloc(std::strlen(w) + 1);
    std::strcpy(s, w);
    forms->Add(new TPCharHolder(s));
  }
  return forms;
}

TEST(LemmaList, FreeClearAndDestructionReleaseTheListsOfForms) {
  gListsFreed = 0;
  auto *lemmas = new TLemmaStringList;
  lemmas->AddObject("go", Forms({"goes", "went", "gone"}));
  lemmas->AddObject("be", Forms({"is", "was"}));
  lemmas->AddObject("headword without forms", nullptr);
  lemmas->Free();
  EXPECT_EQ(gListsFreed, 2);
  {
    TLemmaStringList lemmas;
    lemmas.AddObject("go", Forms({"went"}));
    lemmas.Clear();
    EXPECT_EQ(gListsFreed, 3);
    EXPECT_EQ(lemmas.Count(), 0);
    lemmas.AddObject("be", Forms({"was"}));
  }
  EXPECT_EQ(gListsFreed, 4);
}

} // namespace
} // namespace kestrel
