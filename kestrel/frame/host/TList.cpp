#include <kestrel/frame/host/TList.h>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

void TPersistent::Assign(TPersistent *source) {
  if (source)
    source->AssignTo(this);
  else
    AssignTo(nullptr);
}

void TPersistent::AssignTo(TPersistent *dest) {
  throw EConvertError("Cannot assign " + std::string(dest ? "object" : "nil") + " to object");
}

TList::~TList() { TList::Clear(); }

void TList::RaiseListError(const char *msg, intptr_t data) {
  throw EListError(Format(msg, static_cast<int>(data)));
}

void TList::Error(const char *msg, intptr_t data) const {
  RaiseListError(msg, data);
}

void TList::Fail(const char *msg, intptr_t data) const {
  Error(msg, data);
  RaiseListError(msg, data);
}

void TList::Grow() {
  int32_t delta = FCapacity > 64 ? FCapacity / 4 : (FCapacity > 8 ? 16 : 4);
  SetCapacity(FCapacity + delta);
}

void TList::Notify(void *, TListNotification) {}

void TList::Clear() {
  // Notify before forgetting, as the host does, so owners can free items.
  while (FCount > 0)
    Delete(FCount - 1);
  SetCapacity(0);
}

int32_t TList::Add(void *item) {
  int32_t result = FCount;
  if (result == FCapacity)
    Grow();
  FList[static_cast<size_t>(result)] = item;
  ++FCount;
  if (item)
    Notify(item, TListNotification::lnAdded);
  return result;
}

void TList::Insert(int32_t index, void *item) {
  if (index < 0 || index > FCount)
    Fail(Consts::SListIndexError, index);
  if (FCount == FCapacity)
    Grow();
  for (int32_t i = FCount; i > index; --i)
    FList[i] = FList[i - 1];
  FList[index] = item;
  ++FCount;
  if (item)
    Notify(item, TListNotification::lnAdded);
}

void *TList::Get(int32_t index) const {
  if (index < 0 || index >= FCount)
    Fail(Consts::SListIndexError, index);
  return FList[static_cast<size_t>(index)];
}

void TList::Put(int32_t index, void *item) {
  if (index < 0 || index >= FCount)
    Fail(Consts::SListIndexError, index);
  void *old = FList[index];
  if (item != old) {
    FList[index] = item;
    if (old)
      Notify(old, TListNotification::lnDeleted);
    if (item)
      Notify(item, TListNotification::lnAdded);
  }
}

void TList::Delete(int32_t index) {
  if (index < 0 || index >= FCount)
    Fail(Consts::SListIndexError, index);
  void *item = FList[index];
  --FCount;
  for (int32_t i = index; i < FCount; ++i)
    FList[i] = FList[i + 1];
  if (item)
    Notify(item, TListNotification::lnDeleted);
}

void TList::Exchange(int32_t index1, int32_t index2) {
  if (index1 < 0 || index1 >= FCount)
    Fail(Consts::SListIndexError, index1);
  if (index2 < 0 || index2 >= FCount)
    Fail(Consts::SListIndexError, index2);
  std::swap(FList[index1], FList[index2]);
}

void TList::Move(int32_t curIndex, int32_t newIndex) {
  if (curIndex == newIndex)
    return;
  if (newIndex < 0 || newIndex >= FCount)
    Fail(Consts::SListIndexError, newIndex);
  void *item = Get(curIndex);
  FList[curIndex] = nullptr;
  Delete(curIndex);
  Insert(newIndex, nullptr);
  FList[newIndex] = item;
}

void *TList::Extract(void *item) {
  int32_t i = IndexOf(item);
  if (i < 0)
    return nullptr;
  FList[i] = nullptr;
  Delete(i);
  Notify(item, TListNotification::lnExtracted);
  return item;
}

int32_t TList::IndexOf(const void *item) const {
  for (int32_t i = 0; i < FCount; ++i)
    if (FList[i] == item)
      return i;
  return -1;
}

int32_t TList::Remove(void *item) {
  int32_t i = IndexOf(item);
  if (i >= 0)
    Delete(i);
  return i;
}

void TList::Pack() {
  int32_t out = 0;
  for (int32_t i = 0; i < FCount; ++i)
    if (FList[i])
      FList[out++] = FList[i];
  FCount = out;
}

void TList::SetCapacity(int32_t newCapacity) {
  if (newCapacity < FCount || newCapacity > (INT32_MAX / 8))
    Fail(Consts::SListCapacityError, newCapacity);
  FList.resize(static_cast<size_t>(newCapacity));
  FList.shrink_to_fit();
  FCapacity = newCapacity;
}

void TList::SetCount(int32_t newCount) {
  if (newCount < 0 || newCount > (INT32_MAX / 8))
    Fail(Consts::SListCountError, newCount);
  if (newCount > FCapacity)
    SetCapacity(newCount);
  if (newCount > FCount) {
    for (int32_t i = FCount; i < newCount; ++i)
      FList[i] = nullptr;
    FCount = newCount;
  } else {
    while (FCount > newCount)
      Delete(FCount - 1);
  }
}

void QuickSortPointers(void **items, int32_t left, int32_t right, TListSortCompare compare) {
  while (left < right) {
    int32_t i = left, j = right;
    void *pivot = items[left + (right - left) / 2];
    do {
      while (i < right && compare(items[i], pivot) < 0)
        ++i;
      while (j > left && compare(items[j], pivot) > 0)
        --j;
      if (i <= j) {
        std::swap(items[i], items[j]);
        ++i;
        --j;
      }
    } while (i <= j);
    // Recurse into the smaller part, loop over the larger one.
    if (j - left < right - i) {
      if (left < j)
        QuickSortPointers(items, left, j, compare);
      left = i;
    } else {
      if (i < right)
        QuickSortPointers(items, i, right, compare);
      right = j;
    }
  }
}

void TList::Sort(TListSortCompare compare) {
  if (FCount > 1 && compare)
    QuickSortPointers(FList.data(), 0, FCount - 1, compare);
}

} // namespace kestrel
