// Streams: the abstract stream with its checked transfers, memory streams and
// the read-only resource stream over the library's embedded data.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

enum class TSeekOrigin : uint8_t { soBeginning, soCurrent, soEnd };
inline constexpr uint16_t soFromBeginning = 0;
inline constexpr uint16_t soFromCurrent = 1;
inline constexpr uint16_t soFromEnd = 2;

// The abstract stream: a position in a sequence of bytes, with reads and
// writes that may fall short and checked forms that raise instead.
class TStream : public TObject {
public:
  virtual int64_t GetSize();
  virtual void SetSize(int32_t newSize);
  virtual void SetSize(int64_t newSize);
  // Read and Write return the count done, which may be short.
  virtual int32_t Read(void *buffer, int32_t count) = 0;
  virtual int32_t Write(const void *buffer, int32_t count) = 0;
  virtual int32_t Seek(int32_t offset, uint16_t origin);
  virtual int64_t Seek(int64_t offset, TSeekOrigin origin) = 0;

  // These raise EReadError / EWriteError on a short transfer.
  void ReadBuffer(void *buffer, int32_t count);
  void WriteBuffer(const void *buffer, int32_t count);
  int64_t CopyFrom(TStream *source, int64_t count);

  int64_t Position() { return Seek(int64_t(0), TSeekOrigin::soCurrent); }
  void SetPosition(int64_t pos) { Seek(pos, TSeekOrigin::soBeginning); }
  int64_t Size() { return GetSize(); }
  // What is left from the position to the end; never negative.
  int64_t Remaining();
};

// A stream over a block of memory that it does not own.
class TCustomMemoryStream : public TStream {
public:
  using TStream::Seek;
  using TStream::SetSize;
  int32_t Read(void *buffer, int32_t count) override;
  int64_t Seek(int64_t offset, TSeekOrigin origin) override;
  const void *Memory() const { return FMemory; }

protected:
  void SetPointer(const void *ptr, int64_t size);
  const void *FMemory = nullptr;
  int64_t FSize = 0;
  int64_t FPosition = 0;
};

// A growable stream in memory that owns its block.
class TMemoryStream : public TCustomMemoryStream {
public:
  using TStream::SetSize;
  ~TMemoryStream() override;
  int32_t Write(const void *buffer, int32_t count) override;
  void SetSize(int64_t newSize) override;
  void Clear();
  void *Memory() { return FData; }

private:
  void SetCapacity(int64_t newCapacity);
  uint8_t *FData = nullptr;
  int64_t FCapacity = 0;
};

// Reads a resource of the library's own module, by name and type. Raises
// EResNotFound when the module has no such resource.
class TResourceStream : public TCustomMemoryStream {
public:
  TResourceStream(HMODULE instance, const std::string &resName, const std::string &resType);
  int32_t Write(const void *buffer, int32_t count) override; // raises EStreamError
};

} // namespace kestrel
