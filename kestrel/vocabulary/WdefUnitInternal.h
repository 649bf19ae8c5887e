// The parts of unit Wdef's start-up that its files provide. Internal: the
// unit's pair in Wdef.cpp calls them.
#pragma once

namespace kestrel {

// The wide-string tables of the selection strings.
void SetSelectionTables();
// The constant byte-string tables, back after a finalisation released them.
void FillDisplayTables();
void FillConcordanceSortNames();
// The strings of the display that the start-up sets.
void SetDisplayStrings();
// Every row of LibraryRecs to zero.
void ZeroLibraryRecs();

} // namespace kestrel
