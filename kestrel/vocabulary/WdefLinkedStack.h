// The sentinel pair of a linked stack. Pushing and popping are the caller's.
#pragma once

#include <cstdint>

namespace kestrel {

// A cell of a linked stack: a value and the next cell.
struct TLStackCell {
  int32_t value;
  TLStackCell *next;
};

// The head cell and the cell that ends every chain; null until LStackInit.
extern TLStackCell *Lhead;
extern TLStackCell *Lz;

// Makes the two cells: Lhead's next is Lz, and Lz's next is Lz itself. The
// values are left at 0.
void LStackInit();
// Frees the two cells and sets both pointers to null.
void LClearStack();

} // namespace kestrel
