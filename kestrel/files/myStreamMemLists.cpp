#include <kestrel/files/myStreamMemLists.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/platform/Errors.h>
#include <kestrel/frame/platform/SharedMemory.h>

namespace kestrel {

// ---- TMemoryMapFile ---------------------------------------------------------

TMemoryMapFile::TMemoryMapFile(const std::string &MapName, int32_t Size) : fMapName(MapName) {
  SetupMap(MapName, Size);
}

TMemoryMapFile::~TMemoryMapFile() {
  Close();
}

void TMemoryMapFile::SetupMap(const std::string &MapName, int32_t Size) {
  Close(); // one region at a time: a hold left open would keep the old one alive
  fMapName = MapName;
  // The region is Size + 4 bytes, and that must be a 32-bit size.
  if (Size < 0 || Size > std::numeric_limits<int32_t>::max() - 4) return;
  fMapHandle = OpenFileMappingA(FILE_MAP_ALL_ACCESS, false, MapName.c_str());
  bool creator = false;
  if (fMapHandle == 0) {
    fMapHandle = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                    static_cast<uint32_t>(Size) + 4, MapName.c_str());
    // A region that appeared between the two calls is opened, not created:
    // its header is its creator's.
    creator = fMapHandle != 0 && GetLastError() != ERROR_ALREADY_EXISTS;
  }
  if (fMapHandle == 0) return;
  fView = MapViewOfFile(fMapHandle, FILE_MAP_ALL_ACCESS, 0, 0, 0);
  if (fView == nullptr) return;
  fBase = fView;
  // The region's length bounds every access, whatever its header says.
  MEMORY_BASIC_INFORMATION info;
  fViewBytes = VirtualQuery(fView, &info, sizeof info) ? info.RegionSize : 0;
  if (fViewBytes < 4) return; // no room for a header: stays without a size
  if (creator) {
    SetMemL(0, Size);
    fMapSize = Size;
  } else {
    // A header that claims more than the region holds is cut to the region.
    int32_t header = GetMemL(0);
    fMapSize =
        static_cast<int32_t>(std::clamp<int64_t>(header, 0, static_cast<int64_t>(fViewBytes) - 4));
  }
}

void TMemoryMapFile::Remap(int32_t Size) {
  if (fMapHandle == 0) SetupMap(fMapName, Size);
}

void TMemoryMapFile::Close() {
  if (fMapHandle == 0) return;
  if (fView != nullptr) UnmapViewOfFile(fView);
  CloseHandle(fMapHandle);
  fMapHandle = 0;
  fView = nullptr;
  fMapSize = 0;
  fViewBytes = 0;
}

void *TMemoryMapFile::ConvertPointer(int32_t Offset) const {
  return reinterpret_cast<void *>(reinterpret_cast<uintptr_t>(fBase) +
                                  static_cast<uintptr_t>(static_cast<intptr_t>(Offset)));
}

bool TMemoryMapFile::HandleException(void *Pointer, int32_t Offset) {
  if (Offset >= fMapSize) return false;
  VirtualAlloc(Pointer, 1, MEM_COMMIT, PAGE_READWRITE);
  return true;
}

bool TMemoryMapFile::Faults(int32_t Offset, int32_t Count) const {
  if (fView == nullptr || Offset < 0 || Count < 0) return true;
  // Within the region's bytes, counted from fBase, and within the view
  // wherever fBase points.
  int64_t end = int64_t(Offset) + Count;
  int64_t start = static_cast<int64_t>(reinterpret_cast<uintptr_t>(fBase)) -
                  static_cast<int64_t>(reinterpret_cast<uintptr_t>(fView)) + Offset;
  return end > int64_t(fMapSize) + 4 || start < 0 || start + Count > int64_t(fViewBytes);
}

void TMemoryMapFile::RaiseFault(int32_t Offset, bool Write) const {
  throw EAccessViolation(Format("Access violation: %s of address %p (offset %d of map \"%s\")",
                                Write ? "write" : "read", ConvertPointer(Offset), Offset,
                                fMapName.c_str()));
}

template <typename Access>
void TMemoryMapFile::Guarded(int32_t Offset, int32_t Count, bool Write, Access access) {
  if (Faults(Offset, Count)) {
    if (!HandleException(ConvertPointer(Offset), Offset) || Faults(Offset, Count))
      RaiseFault(Offset, Write);
  }
  access(ConvertPointer(Offset));
}

void TMemoryMapFile::SetMemL(int32_t Offset, int32_t Value) {
  Guarded(Offset, 4, true, [Value](void *p) { std::memcpy(p, &Value, 4); });
}

int32_t TMemoryMapFile::GetMemL(int32_t Offset) {
  int32_t value = 0;
  Guarded(Offset, 4, false, [&value](void *p) { std::memcpy(&value, p, 4); });
  return value;
}

// ---- TFlexibleSizeMap -------------------------------------------------------

TFlexibleSizeMap::TFlexibleSizeMap(const std::string &MapName, int32_t Size)
    : TMemoryMapFile(kSharedMapPrefix + MapName, Size) {}

void TFlexibleSizeMap::Checksize(int32_t Size) {
  if (Size == fMapSize) return;
  Close();
  Remap(Size);
}

int32_t TFlexibleSizeMap::ReadFromMemmap(void *Target, int32_t Offset, int32_t Count) {
  fPosition = Offset;
  if (Count < 0 || Offset < 0 || Offset >= fMapSize) return 0;
  int32_t n = std::min(Count, fMapSize - Offset);
  Guarded(Offset, n, false,
          [Target, n](void *p) { std::memcpy(Target, p, static_cast<size_t>(n)); });
  fPosition += n;
  return n;
}

void TFlexibleSizeMap::WriteToMemmap(const void *Source, int32_t Offset, int32_t Count) {
  fPosition = Offset;
  if (Count > 0)
    Guarded(Offset, Count, true,
            [Source, Count](void *p) { std::memcpy(p, Source, static_cast<size_t>(Count)); });
  fPosition += Count;
}

// ---- TMyStreamMemList -------------------------------------------------------

TMyStreamMemList::TMyStreamMemList(const std::string &Name)
    : fMemmap(std::make_unique<TFlexibleSizeMap>(Name, 4)) {}

TMyStreamMemList::~TMyStreamMemList() {
  fMemmap.reset();
}

bool TMyStreamMemList::CopyToMemmap() {
  int64_t total = 4;
  for (int32_t i = 0; i < Count(); ++i)
    total += ItemSizeInMemmap(i);
  // The region's size is 32-bit, header included.
  if (total > std::numeric_limits<int32_t>::max() - 4) return false;
  int32_t total32 = static_cast<int32_t>(total);
  fMemmap->Checksize(total32);
  fMemmap->WriteToMemmap(&total32, 0, 4);
  for (int32_t i = 0; i < Count(); ++i)
    if (!WriteItemToMemmap(i)) return false;
  return true;
}

bool TMyStreamMemList::MoveToMemmap() {
  bool copied = CopyToMemmap();
  if (!copied) return false; // the items stay: not all of them reached the map
  Clear();
  fInMemmap = true;
  return true;
}

bool TMyStreamMemList::LoadFromMemmap() {
  Clear();
  fInMemmap = false;
  TFlexibleSizeMap &map = *fMemmap;
  if (map.fMapSize < 4) return false;
  int32_t total = 0;
  bool result = map.ReadFromMemmap(&total, 0, 4) > 0;
  // The items end at the writer's total. Resizing the map to it instead
  // (Close and open again) would find the same region while another process
  // holds it, and would drop the region with its items when none does.
  int32_t end = std::clamp(total, 4, map.fMapSize);
  for (int32_t p = 4; p < end;) {
    int32_t number = 0;
    map.ReadFromMemmap(&number, p, 4);
    if (number <= 0) break;
    int32_t read = ReadItemFromMemmap();
    if (read <= 0) result = false;
    // An item that reports no bytes still moves the reader on past its number.
    p += std::max(read, 0) + 4;
  }
  return result;
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(myStreamMemLists, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
