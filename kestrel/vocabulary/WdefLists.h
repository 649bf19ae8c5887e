// Typed lists of holders, and the stream forms of two of them.
//
// A list of holders owns them: Clear, Free and destruction free every holder
// it holds (and so a holder's C string), and nothing else may free one. The
// base class's Delete and Extract only take a holder out, so a caller who
// deletes one frees it first. Free frees the holders and then the list; use
// it, or delete, in place of TObject::Free.
#pragma once

#include <cstdint>

#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/vocabulary/WdefHolders.h>

namespace kestrel {

class TStream;

// A list that owns its items, which are holders (any TObject).
class TOwningList : public TList {
public:
  ~TOwningList() override { FreeItems(); }
  // Frees every holder and empties its slot, then clears the list.
  void Clear() override;
  // Frees the holders, then the list.
  virtual void Free() { delete this; }

protected:
  void FreeItems();
};

// An owning list whose items are holders of one class.
template <typename Holder> class THolderList : public TOwningList {
public:
  using HolderType = Holder;
  // The holder at index (null for an empty slot); a bad index raises EListError.
  Holder *Items(int32_t index) const { return static_cast<Holder *>(Get(index)); }
};

// Items as the caller wishes, not owned; the number is the tools' own.
class TNumberList : public TList {
public:
  explicit TNumberList(int16_t value) : number(value) {}
  int16_t number;
};

class TLongintList : public THolderList<TLongIntHolder> {
public:
  // The index of the first holder with that number, or -1.
  int32_t IndexOF(int32_t value) const;
};

// Stream form: the values one after the other, each a signed 16-bit
// little-endian number, with no count: the reader is told it.
class TSmallintList : public THolderList<TSmallIntHolder> {
public:
  // Appends items read from the stream: as many as the low 16 bits of count,
  // taken as a signed number, say (none for 0 or below). False when anything
  // fails, a stream that ends early included; the items read whole before
  // stay in the list.
  bool ReadFromStream(int32_t count, TStream *stream);
  // Writes every item in list order (an empty slot as 0); false on failure.
  bool SaveToStream(TStream *stream) const;
};

// Stream form: 8-byte records with no count (see small_and_long_rec), the
// fill bytes written as 0.
class TSmallAndLongintList : public THolderList<TSmallAndLongintHolder> {
public:
  // Appends count items (all 32 bits); otherwise as TSmallintList.
  bool ReadFromStream(int32_t count, TStream *stream);
  bool SaveToStream(TStream *stream) const;
};

class TFileDetailsHolderList : public THolderList<TFileDetailsHolder> {};

class TPcharList : public THolderList<TPCharHolder> {};
class TDir_Info_List : public TPcharList {};
class TLongIntAndPCharList : public THolderList<TLongIntAndPCharHolder> {};
class TBooleanAndPCharList : public THolderList<TBooleanAndPCharHolder> {};
class TTwoBooleanAndPCharList : public THolderList<TTwoBooleanAndPCharHolder> {};
class TDoubleLongIntList : public THolderList<TDoubleLongIntHolder> {};
class Tconcordance_call_recHolderList : public THolderList<TConcordance_call_recHolder> {};

// One holder per file, in file order: first the running total of file
// sizes, second the running total of tokens.
class TTokensAndFileSizesList : public TDoubleLongIntList {
public:
  // The size and tokens of file n, counted from 1; a bad n raises EListError.
  int32_t GetThisFileSize(int32_t n) const;
  int32_t GetThisFileTokens(int32_t n) const;
};

// A string list whose objects are owned when the constructor says so: then
// Clear, Free and destruction free every object.
class TSmallAndLongintStringList : public TStringList {
public:
  explicit TSmallAndLongintStringList(bool owns) : FOwns(owns) {}
  ~TSmallAndLongintStringList() override;
  void Clear() override;
  // Frees the objects if the list owns them, then the list in any case.
  virtual void Free() { delete this; }
  bool OwnsObjects() const { return FOwns; }

private:
  void FreeObjects();
  bool FOwns;
};

} // namespace kestrel
