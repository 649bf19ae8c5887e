#include "SearchMatchers.h"

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/MarkFreeText.h>
#include <kestrel/search/Search.h>
#include <kestrel/search/UREFamiliarSyntax.h>
#include <kestrel/unicode/CodePages.h>

#include "Cli.h"

namespace kestrel::cli {
namespace {

uint32_t Units(const std::u16string &text) {
  if (text.size() > 0x7FFFFFFF) throw EConvertError("text too long to search (2 G units at most)");
  return static_cast<uint32_t>(text.size());
}

// The literal engine. Whole words: a candidate that is not one is passed by
// one character only, since an occurrence inside it may be.
class LiteralMatcher : public Matcher {
public:
  LiteralMatcher(const std::u16string &pattern, const MatchOptions &o)
      : Matcher(o.ignoreMarks), wholeWord_(o.wholeWord) {
    TSearchFlags flags;
    if (o.caseSensitive) flags.Include(TSearchFlag::sfCaseSensitive);
    if (o.compressSpace) flags.Include(TSearchFlag::sfSpaceCompress);
    engine_.FindPrepare(pattern, flags);
  }

protected:
  std::vector<MatchSpan> Find(const std::u16string &text) override {
    std::vector<MatchSpan> out;
    const uint32_t n = Units(text);
    if (!wholeWord_) {
      engine_.FindAll(text.data(), n);
      for (uint32_t i = 0; i < engine_.GetCount(); ++i) {
        int32_t s = 0, e = 0;
        engine_.GetResult(i, s, e);
        out.push_back({uint32_t(s), uint32_t(e)});
      }
      return out;
    }
    for (uint32_t at = 0, s = 0, e = 0;
         at < n && engine_.FindFirst(text.data() + at, n - at, s, e);) {
      s += at;
      e += at;
      if (IsWholeWord(text.data(), n, s, e)) {
        out.push_back({s, e});
        at = e > s ? e : s + 1;
      } else {
        at = s + 1;
      }
      if (at < n && IsLowSurrogateUnit(text[at]) && IsHighSurrogateUnit(text[at - 1])) ++at;
    }
    return out;
  }

private:
  TUTBMSearch engine_{nullptr};
  bool wholeWord_;
};

// Every leftmost-longest match; word bounds are part of the match.
class LongestMatcher : public Matcher {
public:
  LongestMatcher(const std::u16string &pattern, const MatchOptions &o) : Matcher(o.ignoreMarks) {
    TSearchFlags flags;
    if (o.caseSensitive) flags.Include(TSearchFlag::sfCaseSensitive);
    if (o.wholeWord) {
      flags.Include(TSearchFlag::sfLeftBounded);
      flags.Include(TSearchFlag::sfRightBounded);
    }
    engine_.FindPrepare(pattern, flags);
  }

protected:
  std::vector<MatchSpan> Find(const std::u16string &text) override {
    std::vector<MatchSpan> out;
    engine_.FindAll(text.data(), Units(text));
    for (const TURELongestMatch::TMatch &m : engine_.Matches())
      if (m.Start < m.Stop) out.push_back({m.Start, m.Stop});
    return out;
  }

private:
  TURELongestMatch engine_;
};

// The one-pass engine as it is; whole words are picked from its matches.
class SinglePassMatcher : public Matcher {
public:
  SinglePassMatcher(const std::u16string &pattern, const MatchOptions &o)
      : Matcher(o.ignoreMarks), wholeWord_(o.wholeWord) {
    engine_.FindPrepare(pattern, o.caseSensitive ? TSearchFlags{TSearchFlag::sfCaseSensitive}
                                                 : TSearchFlags{});
  }

protected:
  std::vector<MatchSpan> Find(const std::u16string &text) override {
    std::vector<MatchSpan> out;
    const uint32_t n = Units(text);
    engine_.FindAll(text.data(), n);
    for (uint32_t i = 0; i < engine_.GetCount(); ++i) {
      int32_t s = 0, e = 0;
      engine_.GetResult(i, s, e);
      if (s < e && (!wholeWord_ || IsWholeWord(text.data(), n, uint32_t(s), uint32_t(e))))
        out.push_back({uint32_t(s), uint32_t(e)});
    }
    return out;
  }

private:
  TURESearch engine_;
  bool wholeWord_;
};

// The engine's message for a bad pattern is two lines, the first naming
// the pattern it saw (a translation): one line naming the user's pattern.
[[noreturn]] void RaiseBadPattern(const Exception &e, const std::u16string &pattern) {
  const std::string &message = e.Message();
  const size_t cut = message.find('\r');
  const std::string fault = cut == std::string::npos ? message : message.substr(cut + 1);
  throw Exception("Error in regular expression '" + WideStringToUTF8(pattern) + "': " + fault);
}

} // namespace

std::unique_ptr<Matcher> Matcher::Make(const std::u16string &pattern, const MatchOptions &o) {
  const std::u16string seen = o.ignoreMarks ? WithoutMarks(pattern) : pattern;
  if (seen.empty()) throw UsageError{"the pattern is empty once its marks are ignored"};
  if (!o.regex) return std::make_unique<LiteralMatcher>(seen, o);
  const std::u16string translated = TranslateFamiliarSyntax(seen, !o.caseSensitive);
  try {
    if (o.singlePass) return std::make_unique<SinglePassMatcher>(translated, o);
    return std::make_unique<LongestMatcher>(translated, o);
  } catch (const ERegexSyntax &) {
    throw;
  } catch (const Exception &e) {
    RaiseBadPattern(e, pattern);
  }
}

std::vector<MatchSpan> Matcher::FindAll(const std::u16string &text) {
  if (!ignoreMarks_) return Find(text);
  const TMarkFreeText bare(text);
  std::vector<MatchSpan> out = Find(bare.Text());
  for (MatchSpan &m : out)
    bare.ToOriginal(m.start, m.stop, m.start, m.stop);
  return out;
}

} // namespace kestrel::cli
