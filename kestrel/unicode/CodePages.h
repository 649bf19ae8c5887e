// Code pages, UTF-8, code blocks and the locale-aware compare.
#pragma once

#include <string>

namespace kestrel {

extern std::u16string CRLF;

// Chooses the WideCompareText routine for the platform (the unit's start-up).
void ChooseWideCompareText();

} // namespace kestrel
