// Unit Wdef: the list of lemma entries.
#include <kestrel/vocabulary/WdefLemmaList.h>

namespace kestrel {

TLemmaStringList::~TLemmaStringList() {
  OnChange = nullptr;
  OnChanging = nullptr;
  FreeObjects();
}

// Each list held goes through its virtual destructor, which does what the
// list's Free does: its holders and their C strings go with it.
void TLemmaStringList::FreeObjects() {
  for (int32_t i = 0; i < Count(); ++i)
    if (TObject *forms = Objects(i)) {
      PutObject(i, nullptr);
      delete forms;
    }
}

void TLemmaStringList::Clear() {
  FreeObjects();
  TStringList::Clear();
}

} // namespace kestrel
