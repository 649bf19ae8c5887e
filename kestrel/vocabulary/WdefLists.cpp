// Unit Wdef: the typed lists of holders and their stream forms.
#include <kestrel/vocabulary/WdefLists.h>

#include <bit>
#include <cstring>
#include <memory>

#include <kestrel/frame/host/TStream.h>

namespace kestrel {

static_assert(std::endian::native == std::endian::little,
              "the stream forms are little-endian and written from memory");

void TOwningList::FreeItems() {
  for (int32_t i = 0; i < Count(); ++i) {
    // Every holder is freed through its virtual destructor, which does what
    // its Free does (a C string goes with its holder).
    if (auto *holder = static_cast<TObject *>(Get(i))) {
      Put(i, nullptr);
      delete holder;
    }
  }
}

void TOwningList::Clear() {
  FreeItems();
  Pack();
  TList::Clear();
}

namespace {

// Appends one holder made of what was read, freeing it if the list cannot
// take it.
template <typename List, typename Value> void AddHolderOf(List &list, const Value &value) {
  auto holder = std::make_unique<typename List::HolderType>(value);
  list.Add(holder.get());
  holder.release();
}

// Reads count values whole and adds a holder for each; the host's read
// error of a stream that ends early ends the reading.
template <typename List, typename Value>
bool ReadHolders(List &list, int64_t count, TStream *stream) {
  if (!stream) return false;
  try {
    for (int64_t i = 0; i < count; ++i) {
      Value value;
      stream->ReadBuffer(&value, sizeof value);
      AddHolderOf(list, value);
    }
    return true;
  } catch (...) {
    return false;
  }
}

template <typename List, typename Write>
bool SaveHolders(const List &list, TStream *stream, Write writeOne) {
  if (!stream) return false;
  try {
    for (int32_t i = 0; i < list.Count(); ++i)
      writeOne(list.Items(i));
    return true;
  } catch (...) {
    return false;
  }
}

} // namespace

int32_t TLongintList::IndexOF(int32_t value) const {
  for (int32_t i = 0; i < Count(); ++i)
    if (const TLongIntHolder *holder = Items(i); holder && holder->number == value) return i;
  return -1;
}

bool TSmallintList::ReadFromStream(int32_t count, TStream *stream) {
  const auto n = static_cast<int16_t>(static_cast<uint32_t>(count) & 0xFFFFu);
  return ReadHolders<TSmallintList, int16_t>(*this, n, stream);
}

bool TSmallintList::SaveToStream(TStream *stream) const {
  return SaveHolders(*this, stream, [stream](const TSmallIntHolder *holder) {
    const int16_t value = holder ? holder->number : 0;
    stream->WriteBuffer(&value, sizeof value);
  });
}

bool TSmallAndLongintList::ReadFromStream(int32_t count, TStream *stream) {
  return ReadHolders<TSmallAndLongintList, small_and_long_rec>(*this, count, stream);
}

bool TSmallAndLongintList::SaveToStream(TStream *stream) const {
  return SaveHolders(*this, stream, [stream](const TSmallAndLongintHolder *holder) {
    small_and_long_rec rec;
    std::memset(&rec, 0, sizeof rec); // the fill bytes too
    if (holder) {
      rec.small_value = holder->small_value;
      rec.long_value = holder->long_value;
    }
    stream->WriteBuffer(&rec, sizeof rec);
  });
}

namespace {

// The value of holder n (from 1) less that of holder n - 1, for one of the two
// running totals. Totals wrap as 32-bit numbers do.
int32_t OneFileOf(const TTokensAndFileSizesList &list, int32_t n,
                  int32_t TDoubleLongIntHolder::*total) {
  auto at = [&](int32_t index) -> uint32_t {
    const TDoubleLongIntHolder *holder = list.Items(index);
    return holder ? static_cast<uint32_t>(holder->*total) : 0;
  };
  const uint32_t upTo = at(n - 1);
  return static_cast<int32_t>(n > 1 ? upTo - at(n - 2) : upTo);
}

} // namespace

int32_t TTokensAndFileSizesList::GetThisFileSize(int32_t n) const {
  return OneFileOf(*this, n, &TDoubleLongIntHolder::first);
}

int32_t TTokensAndFileSizesList::GetThisFileTokens(int32_t n) const {
  return OneFileOf(*this, n, &TDoubleLongIntHolder::second);
}

TSmallAndLongintStringList::~TSmallAndLongintStringList() {
  OnChange = nullptr;
  OnChanging = nullptr;
  FreeObjects();
}

void TSmallAndLongintStringList::FreeObjects() {
  if (!FOwns) return;
  for (int32_t i = 0; i < Count(); ++i)
    if (TObject *object = Objects(i)) {
      PutObject(i, nullptr);
      delete object;
    }
}

void TSmallAndLongintStringList::Clear() {
  FreeObjects();
  TStringList::Clear();
}

} // namespace kestrel
