// Unit bare_assemb_types: the one type the buffer routines share.
#pragma once

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// A list of 8-bit letters beyond ASCII, up to 128 of them. A pair of these
// runs in parallel: position i of the lower list holds a lower-case letter,
// position i of the upper list its upper-case form. The caller fills them.
using ANSILower_or_upperStr_type = ShortString<128>;
static_assert(sizeof(ANSILower_or_upperStr_type) == 129);

} // namespace kestrel
