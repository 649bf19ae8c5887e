#include <kestrel/unicode/CharDatabase.h>

namespace kestrel {

void FreeCharacterDatabase() {}

} // namespace kestrel
