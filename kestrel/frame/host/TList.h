// A list of untyped pointers with the host's growth, notification and errors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <kestrel/frame/host/TObject.h>

namespace kestrel {

enum class TListNotification : uint8_t { lnAdded, lnExtracted, lnDeleted };

using TListSortCompare = int (*)(void *item1, void *item2);

// Owns its slots, not what the pointers point to. An index outside 0 to
// Count() - 1 raises EListError (Get, Put, Delete, Exchange, Move, Insert
// past Count).
class TList : public TObject {
public:
  TList() = default;
  // Destruction clears the list. A subclass that overrides Clear calls its
  // own Clear in its destructor, since a base destructor cannot reach it.
  ~TList() override;

  int32_t Add(void *item);
  void Insert(int32_t index, void *item);
  void *Get(int32_t index) const;
  void Put(int32_t index, void *item);
  void Delete(int32_t index);
  void Exchange(int32_t index1, int32_t index2);
  void Move(int32_t curIndex, int32_t newIndex);
  void *Extract(void *item);
  int32_t IndexOf(const void *item) const;
  int32_t Remove(void *item);
  void Pack();
  void Sort(TListSortCompare compare);
  void *First() const { return Get(0); }
  void *Last() const { return Get(FCount - 1); }

  int32_t Count() const { return FCount; }
  void SetCount(int32_t newCount);
  int32_t Capacity() const { return FCapacity; }
  void SetCapacity(int32_t newCapacity);
  void *operator[](int32_t index) const { return Get(index); }
  void **List() { return FList.data(); }

protected:
  // The four virtual operations in the host's slot order: Grow, Notify,
  // Clear, Error.
  virtual void Grow();
  virtual void Notify(void *ptr, TListNotification action);

public:
  virtual void Clear();
  // Raises EListError with the message formatted with data; a subclass may
  // raise an error of its own instead. Should an override return, the list
  // raises the base error all the same, so no fault goes on unchecked.
  virtual void Error(const char *msg, intptr_t data) const;
  // The base error, where no list is at hand.
  [[noreturn]] static void RaiseListError(const char *msg, intptr_t data);

private:
  [[noreturn]] void Fail(const char *msg, intptr_t data) const;

  std::vector<void *> FList; // size() == FCapacity
  int32_t FCount = 0;
  int32_t FCapacity = 0;
};

// The host's quicksort over an array of pointers, safe against a compare that
// is not a strict order (it never leaves the range).
void QuickSortPointers(void **items, int32_t left, int32_t right, TListSortCompare compare);

} // namespace kestrel
