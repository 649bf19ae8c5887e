// The accelerator of the regular-expression engine: the step table, the
// decision cache and the start search give what the plain scan gives.
#include <gtest/gtest.h>

#include <kestrel/search/URESearch.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

TEST(UREFastScan, LongTextsTakeTheFastPathWithTheSameResults) {
  // Units beyond the first 256 and states beyond the step table go through
  // the decision cache: compare with the plain scan.
  std::u16string text;
  for (int i = 0; i < 4000; ++i)
    text += char16_t(u'a' + i % 26) + std::u16string(i % 7 == 0 ? u"\u0416\u0436 " : u"") +
            char16_t(0x0400 + i % 96);
  // The last patterns can only begin on 1 to 5 ranges of units below 256,
  // which the scan looks for many units at a time.
  for (const char16_t *p :
       {u"[\u0400-\u04ff]+", u"\\p10\\p11", u"[^a-z]{2,3}", u"a.c|\u0436", u"ef", u"e[a-f]|t",
        u"(e|t|a)[^a]", u"e|t|a|o", u"(e|t|a|o|i|n)g", u"[A-Z][a-z]"}) {
    for (bool fold : {false, true}) {
      TURESearch engine;
      engine.FindPrepare(p, fold ? TSearchFlags{} : CaseSensitive());
      uint32_t run = 0, s = 0, e = 0, s2 = 0, e2 = 0;
      while (run < text.size()) {
        bool a = engine.ExecuteURE(0, text.data() + run, uint32_t(text.size() - run), s, e);
        bool b = engine.ExecuteUREPlain(0, text.data() + run, uint32_t(text.size() - run), s2, e2);
        ASSERT_EQ(a, b);
        if (!a) break;
        ASSERT_EQ(s, s2);
        ASSERT_EQ(e, e2);
        run += e > 0 ? e : 1;
      }
    }
  }
}

} // namespace
} // namespace kestrel::test
