#include <kestrel/unicode/CodePages.h>

namespace kestrel {

std::u16string CRLF;

void ChooseWideCompareText() {}

} // namespace kestrel
