// File handles and the streams over them.
//
// Open modes are the host's: an access value in the low bits and a sharing
// value in bits 4 to 7, or fmCreate alone. Sharing works as on the host's
// system among the streams and handles of this process: an open that asks for
// an access that an earlier open does not share, or that denies an access an
// earlier open holds, fails with a sharing violation. (fmShareCompat and
// fmCreate share nothing.) Other processes are not bound by it.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr uint16_t fmCreate = 0xFFFF;
inline constexpr uint16_t fmOpenRead = 0x0000;
inline constexpr uint16_t fmOpenWrite = 0x0001;
inline constexpr uint16_t fmOpenReadWrite = 0x0002;
inline constexpr uint16_t fmShareCompat = 0x0000;
inline constexpr uint16_t fmShareExclusive = 0x0010;
inline constexpr uint16_t fmShareDenyWrite = 0x0020;
inline constexpr uint16_t fmShareDenyRead = 0x0030;
inline constexpr uint16_t fmShareDenyNone = 0x0040;

inline constexpr THandle INVALID_HANDLE_VALUE = -1;

// The error number of a sharing violation, as errno and GetLastOSError give it.
inline constexpr int32_t ERROR_SHARING_VIOLATION_ERRNO = 16; // EBUSY

// Handle functions: an invalid handle or -1 on failure, with the reason in
// errno (read it with GetLastOSError, which a failed TFileStream also leaves
// set).
THandle FileOpen(const std::string &fileName, uint32_t mode);
THandle FileCreate(const std::string &fileName);
int32_t FileRead(THandle handle, void *buffer, int32_t count);
int32_t FileWrite(THandle handle, const void *buffer, int32_t count);
int64_t FileSeek(THandle handle, int64_t offset, int32_t origin);
void FileClose(THandle handle);
// The handle's file date stamp (see DateUtils.h), -1 on failure.
int32_t FileGetDate(THandle handle);
// Sets the modification date from a stamp; 0 on success, else an error number.
int32_t FileSetDate(THandle handle, int32_t age);

// The system's text for an error number.
std::string SysErrorMessage(int32_t errorCode);

// A stream over a handle it does not own.
class THandleStream : public TStream {
public:
  explicit THandleStream(THandle handle) : FHandle(handle) {}
  using TStream::Seek;
  using TStream::SetSize;
  int64_t GetSize() override;
  void SetSize(int64_t newSize) override; // raises EStreamError on failure
  int32_t Read(void *buffer, int32_t count) override;
  int32_t Write(const void *buffer, int32_t count) override;
  int64_t Seek(int64_t offset, TSeekOrigin origin) override;
  THandle Handle() const { return FHandle; }

protected:
  THandle FHandle;
};

// A stream over a named file that it opens (or creates, with fmCreate) and
// closes. Raises EFOpenError or EFCreateError with the reason.
class TFileStream : public THandleStream {
public:
  TFileStream(const std::string &fileName, uint16_t mode);
  ~TFileStream() override;
  const std::string &FileName() const { return FFileName; }

private:
  std::string FFileName;
};

} // namespace kestrel
