// TURESearch as a search engine: its life, Clear, and FindPrepare, which
// compiles the pattern (the parser, the automaton and the matcher live in
// UREParser.cpp, UREAutomaton.cpp and UREMatcher.cpp).
#include <kestrel/search/URESearch.h>

namespace kestrel {

TURESearch::TURESearch(TWideStrings *AOwner) : TSearchEngine(AOwner) {}

TURESearch::~TURESearch() {
  TURESearch::Clear();
}

void TURESearch::Clear() {
  TSearchEngine::Clear();
  ClearUREBuffer();
  ClearDFA();
}

void TURESearch::ClearDFA() {
  DFA = TDFA{};
  FAnchorVisit.clear();
  FAnchorStamp = 0;
  FFastScan.Clear();
}

void TURESearch::FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) {
  CompileURE(Pattern.c_str(), uint32_t(Pattern.size()),
             !Flags.Contains(TSearchFlag::sfCaseSensitive));
}

void TURESearch::FindPrepare(const char16_t *Pattern, uint32_t PatternLength, TSearchFlags Flags) {
  CompileURE(Pattern, PatternLength, !Flags.Contains(TSearchFlag::sfCaseSensitive));
}

} // namespace kestrel
