// Unit Wdef: the sentinel pair of a linked stack.
#include <kestrel/vocabulary/WdefLinkedStack.h>

namespace kestrel {

TLStackCell *Lhead = nullptr;
TLStackCell *Lz = nullptr;

void LStackInit() {
  Lhead = new TLStackCell{};
  Lz = new TLStackCell{};
  Lhead->next = Lz;
  Lz->next = Lz;
}

// The pointers are cleared too, so a second call frees nothing twice.
void LClearStack() {
  delete Lhead;
  delete Lz;
  Lhead = nullptr;
  Lz = nullptr;
}

} // namespace kestrel
