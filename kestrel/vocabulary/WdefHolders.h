// Holders: small objects that carry a copy of a plain record or number so
// that it can sit in a TList or a TStringList.
//
// A holder with a C string (TPCharHolder and the three ...AndPCharHolder)
// owns it from construction on: Free, or destruction in any other way,
// disposes of it with StrDispose exactly once. Give them strings from
// StrAlloc (or null).
#pragma once

#include <cstddef>
#include <cstdint>

#include <kestrel/frame/host/TObject.h>

namespace kestrel {

// ---- Records ------------------------------------------------------------------
// In the three records with a C string the string is the first field.

struct LongintAndPChar_rec {
  char *pc;
  int32_t number;
};

struct BooleanAndPChar_rec {
  char *pc;
  bool flag;
};

struct TwoBooleanAndPChar_rec {
  char *pc;
  bool flag1;
  bool flag2;
};

struct double_longint_rec {
  int32_t first;
  int32_t second;
};

// Also the stored form of an item of TSmallAndLongintList: the 16-bit value
// at offset 0, two fill bytes, the 32-bit value at offset 4.
struct small_and_long_rec {
  int16_t small_value;
  int32_t long_value;
};
static_assert(sizeof(small_and_long_rec) == 8);
static_assert(offsetof(small_and_long_rec, long_value) == 4);

// The numbers' meaning lies with the tools; the library only copies them.
struct FileDetails_rec {
  uint32_t detail1;
  uint32_t detail2;
  uint32_t detail3;
  const char *file_name;
};

struct special_sorts_rec {
  uint32_t first;
  uint32_t second;
  uint16_t third;
  uint8_t fourth;
};

struct concordance_call_rec {
  uint32_t first;
  uint32_t second;
  uint32_t third;
  uint32_t fourth;
};

// Entries of the array that TArrayOfDoubleLongintHolder copies.
inline constexpr size_t kDoubleLongintArrayLength = 512;

// ---- Holders ------------------------------------------------------------------

class TSmallIntHolder : public TObject {
public:
  explicit TSmallIntHolder(int16_t value) : number(value) {}
  int16_t number;
};

class TLongIntHolder : public TObject {
public:
  explicit TLongIntHolder(int32_t value) : number(value) {}
  int32_t number;
};

// The base of the holders that own a C string.
class TPCharOwningHolder : public TObject {
public:
  ~TPCharOwningHolder() override;
  // Disposes of the C string, then of the holder.
  virtual void Free() { delete this; }
  char *pc;

protected:
  explicit TPCharOwningHolder(char *owned) : pc(owned) {}
};

// Holds the pointer itself, not a copy, and owns the string from then on.
class TPCharHolder : public TPCharOwningHolder {
public:
  explicit TPCharHolder(char *owned) : TPCharOwningHolder(owned) {}
};

class TLongIntAndPCharHolder : public TPCharOwningHolder {
public:
  explicit TLongIntAndPCharHolder(const LongintAndPChar_rec &rec)
      : TPCharOwningHolder(rec.pc), number(rec.number) {}
  int32_t number;
};

class TBooleanAndPCharHolder : public TPCharOwningHolder {
public:
  explicit TBooleanAndPCharHolder(const BooleanAndPChar_rec &rec)
      : TPCharOwningHolder(rec.pc), flag(rec.flag) {}
  bool flag;
};

class TTwoBooleanAndPCharHolder : public TPCharOwningHolder {
public:
  explicit TTwoBooleanAndPCharHolder(const TwoBooleanAndPChar_rec &rec)
      : TPCharOwningHolder(rec.pc), flag1(rec.flag1), flag2(rec.flag2) {}
  bool flag1;
  bool flag2;
};

class TDoubleLongIntHolder : public TObject {
public:
  explicit TDoubleLongIntHolder(const double_longint_rec &rec)
      : first(rec.first), second(rec.second) {}
  int32_t first;
  int32_t second;
};

class TSmallAndLongintHolder : public TObject {
public:
  explicit TSmallAndLongintHolder(const small_and_long_rec &rec)
      : small_value(rec.small_value), long_value(rec.long_value) {}
  int16_t small_value;
  int32_t long_value;
};

// Copies 512 records from the array given; a null pointer gives zeros.
class TArrayOfDoubleLongintHolder : public TObject {
public:
  explicit TArrayOfDoubleLongintHolder(const double_longint_rec *array);
  double_longint_rec values[kDoubleLongintArrayLength];
};

// Keeps its own copy of the file name, disposed of with the holder.
class TFileDetailsHolder : public TObject {
public:
  explicit TFileDetailsHolder(const FileDetails_rec &rec);
  ~TFileDetailsHolder() override;
  uint32_t detail1;
  uint32_t detail2;
  uint32_t detail3;
  char *file_name;
};

class Tspecial_sorts_recHolder : public TObject {
public:
  explicit Tspecial_sorts_recHolder(const special_sorts_rec &rec)
      : first(rec.first), second(rec.second), third(rec.third), fourth(rec.fourth) {}
  uint32_t first;
  uint32_t second;
  uint16_t third;
  uint8_t fourth;
};

class TConcordance_call_recHolder : public TObject {
public:
  explicit TConcordance_call_recHolder(const concordance_call_rec &rec)
      : first(rec.first), second(rec.second), third(rec.third), fourth(rec.fourth) {}
  uint32_t first;
  uint32_t second;
  uint32_t third;
  uint32_t fourth;
};

} // namespace kestrel
