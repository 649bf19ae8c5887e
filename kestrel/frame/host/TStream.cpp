#include <kestrel/frame/host/TStream.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Resources.h>

namespace kestrel {

int64_t TStream::GetSize() {
  int64_t pos = Seek(int64_t(0), TSeekOrigin::soCurrent);
  int64_t size = Seek(int64_t(0), TSeekOrigin::soEnd);
  Seek(pos, TSeekOrigin::soBeginning);
  return size;
}

void TStream::SetSize(int32_t newSize) { SetSize(static_cast<int64_t>(newSize)); }
void TStream::SetSize(int64_t) { throw EStreamError("Stream size cannot be changed"); }

int32_t TStream::Seek(int32_t offset, uint16_t origin) {
  TSeekOrigin o = origin == soFromCurrent ? TSeekOrigin::soCurrent
                  : origin == soFromEnd   ? TSeekOrigin::soEnd
                                          : TSeekOrigin::soBeginning;
  return static_cast<int32_t>(Seek(static_cast<int64_t>(offset), o));
}

int64_t TStream::Remaining() {
  int64_t pos = Position();
  int64_t size = GetSize();
  return size > pos ? size - pos : 0;
}

void TStream::ReadBuffer(void *buffer, int32_t count) {
  if (count != 0 && Read(buffer, count) != count)
    throw EReadError(Consts::SReadError);
}

void TStream::WriteBuffer(const void *buffer, int32_t count) {
  if (count != 0 && Write(buffer, count) != count)
    throw EWriteError(Consts::SWriteError);
}

int64_t TStream::CopyFrom(TStream *source, int64_t count) {
  if (count == 0) {
    source->SetPosition(0);
    count = source->Size();
  }
  int64_t done = 0;
  char buf[65536];
  while (done < count) {
    int32_t n = static_cast<int32_t>(std::min<int64_t>(sizeof buf, count - done));
    source->ReadBuffer(buf, n);
    WriteBuffer(buf, n);
    done += n;
  }
  return done;
}

void TCustomMemoryStream::SetPointer(const void *ptr, int64_t size) {
  FMemory = ptr;
  FSize = size;
}

int32_t TCustomMemoryStream::Read(void *buffer, int32_t count) {
  if (count <= 0 || FPosition < 0 || FPosition >= FSize)
    return 0;
  int64_t n = std::min<int64_t>(count, FSize - FPosition);
  std::memcpy(buffer, static_cast<const uint8_t *>(FMemory) + FPosition, static_cast<size_t>(n));
  FPosition += n;
  return static_cast<int32_t>(n);
}

int64_t TCustomMemoryStream::Seek(int64_t offset, TSeekOrigin origin) {
  switch (origin) {
  case TSeekOrigin::soBeginning:
    FPosition = offset;
    break;
  case TSeekOrigin::soCurrent:
    FPosition += offset;
    break;
  case TSeekOrigin::soEnd:
    FPosition = FSize + offset;
    break;
  }
  return FPosition;
}

TMemoryStream::~TMemoryStream() { std::free(FData); }

void TMemoryStream::Clear() {
  std::free(FData);
  FData = nullptr;
  FCapacity = 0;
  FPosition = 0;
  SetPointer(nullptr, 0);
}

void TMemoryStream::SetCapacity(int64_t newCapacity) {
  if (newCapacity == FCapacity)
    return;
  void *p = newCapacity ? std::realloc(FData, static_cast<size_t>(newCapacity)) : nullptr;
  if (newCapacity && !p)
    throw EStreamError(Consts::SMemoryStreamError);
  if (!newCapacity)
    std::free(FData);
  FData = static_cast<uint8_t *>(p);
  FCapacity = newCapacity;
}

void TMemoryStream::SetSize(int64_t newSize) {
  if (newSize < 0)
    throw EStreamError(Consts::SMemoryStreamError);
  if (newSize > FCapacity)
    SetCapacity((newSize + 0x1FFF) & ~int64_t(0x1FFF));
  if (newSize > FSize)
    std::memset(FData + FSize, 0, static_cast<size_t>(newSize - FSize));
  SetPointer(FData, newSize);
  if (FPosition > newSize)
    FPosition = newSize;
}

int32_t TMemoryStream::Write(const void *buffer, int32_t count) {
  if (FPosition < 0 || count <= 0)
    return 0;
  int64_t end = FPosition + count;
  if (end > FSize) {
    if (end > FCapacity)
      SetCapacity(std::max<int64_t>((end + 0x1FFF) & ~int64_t(0x1FFF), FCapacity + FCapacity / 4));
    if (FPosition > FSize)
      std::memset(FData + FSize, 0, static_cast<size_t>(FPosition - FSize));
    SetPointer(FData, end);
  }
  std::memcpy(FData + FPosition, buffer, static_cast<size_t>(count));
  FPosition = end;
  return count;
}

TResourceStream::TResourceStream(HMODULE instance, const std::string &resName,
                                 const std::string &resType) {
  const ResourceBlob *blob = FindResourceBlob(instance, resName, resType);
  if (!blob)
    throw EResNotFound(Format(Consts::SResNotFound, resName.c_str()));
  SetPointer(blob->data, static_cast<int64_t>(blob->size));
}

int32_t TResourceStream::Write(const void *, int32_t) {
  throw EStreamError(Consts::SCantWriteResourceStreamError);
}

} // namespace kestrel
