// Unit myStreamMemLists: lists moved out of the heap into named shared memory
// regions and back, also across processes.
//
// TMemoryMapFile is a named region whose first 4 bytes hold its size (the
// region is that size + 4 bytes long). TFlexibleSizeMap adds a position and
// growth by replacement, under the name "wordbuf_compartilhar" + its name.
// TMyStreamMemList copies its items to such a map and reloads them; the form
// of an item is a subclass's.
//
// There is no lock between processes: tools take turns by their own means.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr const char *kSharedMapPrefix = "wordbuf_compartilhar";

class TMemoryMapFile : public TObject {
public:
  // Opens the region of this name, or creates it with Size + 4 bytes. An
  // object that could not open, create or map it stays closed (fMapSize 0).
  TMemoryMapFile(const std::string &MapName, int32_t Size);
  ~TMemoryMapFile() override;

  // Open the region of this name, else create it: the creator writes Size
  // into the header, an opener takes the header's size whatever it asked.
  void SetupMap(const std::string &MapName, int32_t Size);
  // Sets the map up again under its name when it is closed; nothing when open.
  void Remap(int32_t Size);
  // Lets go of the region; it goes when no process holds it any more.
  void Close();
  // fBase + Offset, untested.
  void *ConvertPointer(int32_t Offset) const;
  // Called on a faulting access: false for an offset at or past fMapSize,
  // otherwise commits the page and asks for the access again.
  virtual bool HandleException(void *Pointer, int32_t Offset);
  // Guarded 32-bit accesses: a fault that HandleException cannot mend raises
  // EAccessViolation.
  void SetMemL(int32_t Offset, int32_t Value);
  int32_t GetMemL(int32_t Offset);

  std::string fMapName;
  int32_t fMapSize = 0;   // from the header; 0 when closed
  void *fView = nullptr;  // the mapped view; null when closed
  void *fBase = nullptr;  // what offsets are added to
  THandle fMapHandle = 0; // 0 when closed

protected:
  // Runs access(pointer) over count bytes at offset. An access that does not
  // lie wholly within the mapped region (or finds the map closed) is a fault:
  // HandleException decides between one retry and EAccessViolation.
  template <typename Access> void Guarded(int32_t Offset, int32_t Count, bool Write, Access access);

private:
  bool Faults(int32_t Offset, int32_t Count) const;
  [[noreturn]] void RaiseFault(int32_t Offset, bool Write) const;
  size_t fViewBytes = 0; // what the view covers, so that no access leaves it
};

class TFlexibleSizeMap : public TMemoryMapFile {
public:
  // The region "wordbuf_compartilhar" + MapName.
  TFlexibleSizeMap(const std::string &MapName, int32_t Size);

  // When Size differs from fMapSize: Close, then Remap with Size. The old
  // contents go, unless another process still holds the region: then the
  // same region comes back, with its old size.
  void Checksize(int32_t Size);
  void *PositionPtr() const { return ConvertPointer(fPosition); }
  // Copies up to Count bytes from Offset, no further than fMapSize; sets the
  // position to Offset and advances it by what was read.
  int32_t ReadFromMemmap(void *Target, int32_t Offset, int32_t Count);
  // Copies Count bytes to Offset, guarded; the position ends behind them.
  void WriteToMemmap(const void *Source, int32_t Offset, int32_t Count);

  int32_t fPosition = 0;
};

// A list whose items can move to a map and back. In the map: the total
// (4 + the items' sizes) at offset 0, then each item as a positive 32-bit
// number written by the subclass and the item's bytes.
class TMyStreamMemList : public TList {
public:
  // The list's map, "wordbuf_compartilhar" + Name, is made with size 4.
  explicit TMyStreamMemList(const std::string &Name);
  ~TMyStreamMemList() override;

  // Frees the map, then the list.
  void Free() { delete this; }

  // Sizes the map to the items and writes them; false when an item could not
  // be written (the rest are not tried). Raises EAccessViolation when the map
  // cannot hold them.
  bool CopyToMemmap();
  // CopyToMemmap, then the list is cleared and fInMemmap set. A copy that
  // fails leaves the list as it was and fInMemmap false.
  bool MoveToMemmap();
  // Clears the list and reads the items back, up to the total the writer
  // wrote; false when the map holds no total, or an item read gave no bytes.
  bool LoadFromMemmap();

  // Bytes the item takes in the map, its 4-byte number included.
  virtual int32_t ItemSizeInMemmap(int32_t Index) = 0;
  // Writes the item at the map's position, advancing it; false on failure.
  virtual bool WriteItemToMemmap(int32_t Index) = 0;
  // Reads one item at the map's position (just behind its number), adds it
  // to the list, and returns the bytes read after the number.
  virtual int32_t ReadItemFromMemmap() = 0;

  bool fInMemmap = false;
  std::unique_ptr<TFlexibleSizeMap> fMemmap;
};

} // namespace kestrel
