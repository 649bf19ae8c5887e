// The character database: the five tables and the property tests.
#pragma once

namespace kestrel {

// Frees the lock and every loaded table (the unit's finalisation).
void FreeCharacterDatabase();

} // namespace kestrel
