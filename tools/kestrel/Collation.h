// Sorting words the way a linguist reads them: in the order of a locale,
// through the library's WideCompareText, shared by the commands that sort.
#pragma once

#include <cstdint>
#include <string_view>

#include "Cli.h"

namespace kestrel::cli {

// --locale: a POSIX name ("de_DE", "sv_SE.UTF-8") or a Windows locale
// number (1031, 0x0407); the user's locale when absent. Throws UsageError
// for a locale the platform does not know.
uint32_t ChooseLocale(const Args &args);

// A total order: WideCompareText first, and where it sees no difference
// (case, for one), the UTF-16 units, so that a sort is the same on every run.
int CompareForSort(std::u16string_view a, std::u16string_view b, uint32_t locale);

} // namespace kestrel::cli
