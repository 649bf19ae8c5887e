// The list of lemma entries: each string a headword, its object the list of
// the forms under it.
#pragma once

#include <kestrel/frame/host/TStringList.h>

namespace kestrel {

// Owns its objects, which are lists of Wdef's holder lists (a TPcharList of
// the forms, say) and own their strings in turn. Free, Clear and destruction
// free every object; an entry without an object is passed over.
class TLemmaStringList : public TStringList {
public:
  ~TLemmaStringList() override;
  void Clear() override;
  // Frees every list held, with its strings, then this list.
  virtual void Free() { delete this; }

private:
  void FreeObjects();
};

} // namespace kestrel
