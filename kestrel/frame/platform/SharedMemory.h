// Named shared memory regions under the Windows names, on POSIX shared memory.
//
// A region lives in the system's shared memory folder (/dev/shm, the folder
// behind shm_open) under its name, and is fully allocated when it is created,
// as a region backed by the Windows paging file is committed. Like a Windows
// section object it goes when the last handle to it, in any process, closes.
// POSIX has no such count, so the holders keep one with file locks, which the
// kernel drops for a process however it ends:
//
// - Every handle holds a shared lock (flock) on its own open of the region;
//   a view keeps the hold of its handle alive until it is unmapped.
// - A region is published complete: made unnamed (O_TMPFILE), sized, locked,
//   and only then linked under its name, so a named region without a holder
//   is never one being made.
// - Releasing a hold tries to take the lock exclusively; it succeeds only for
//   the last holder, which then removes the name (after checking that the name
//   still means the region it holds) before closing.
// - A holder that crashed has lost its lock with its life. When the last one
//   crashed, the name stays behind unheld; the next open or create of that
//   name finds no holder, removes the leftover and goes on as if it had never
//   been there. Until then it takes its memory in /dev/shm.
// - A handle inherited through fork belongs to the parent: closing it in the
//   child closes the child's copy only (the lock is shared with the parent).
//
// Error numbers are errno values, read with GetLastError (see Errors.h).
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr uint32_t FILE_MAP_ALL_ACCESS = 0xF001F;
inline constexpr uint32_t PAGE_READWRITE = 0x04;
inline constexpr uint32_t MEM_COMMIT = 0x1000;
inline constexpr uint32_t MEM_MAPPED = 0x40000;
// The last error after CreateFileMappingA gave a handle to a region that
// already existed.
inline constexpr uint32_t ERROR_ALREADY_EXISTS = EEXIST;

// A handle to an existing region, or 0 (errno ENOENT when there is none; a
// name the system refuses gives EINVAL or ENAMETOOLONG). The handle is not
// inherited by programs the process starts.
THandle OpenFileMappingA(uint32_t desiredAccess, bool inheritHandle, const char *name);

// A handle to a new region of the given size, read and write, when the file
// handle is INVALID_HANDLE_VALUE (the paging file; the only backing offered).
// When the name is taken, a handle to that region, with the last error set to
// ERROR_ALREADY_EXISTS and the size ignored. 0 on failure: a size of 0, no
// room (ENOSPC, and nothing is left behind), or a refused name.
THandle CreateFileMappingA(THandle file, void *attributes, uint32_t protect, uint32_t sizeHigh,
                           uint32_t sizeLow, const char *name);

// Maps bytes of the region from offset 0, all of it when bytes is 0; null on
// failure. Offsets other than 0 are not offered.
void *MapViewOfFile(THandle mapping, uint32_t desiredAccess, uint32_t offsetHigh,
                    uint32_t offsetLow, size_t bytes);
bool UnmapViewOfFile(const void *view);
// Closes a region handle; false for anything else.
bool CloseHandle(THandle object);

// Commits the page that holds an address of a view. The regions are allocated
// whole, so this only says whether the address lies in a view: the page's
// start, or null.
void *VirtualAlloc(void *address, size_t size, uint32_t allocationType, uint32_t protect);

struct MEMORY_BASIC_INFORMATION {
  void *BaseAddress;    // the address's page
  void *AllocationBase; // the view's start
  uint32_t AllocationProtect;
  size_t RegionSize; // from BaseAddress to the view's last byte, exactly
  uint32_t State;
  uint32_t Protect;
  uint32_t Type;
};
// Describes the view that holds an address: the size of the record, or 0
// when the address lies in no view.
size_t VirtualQuery(const void *address, MEMORY_BASIC_INFORMATION *buffer, size_t length);

} // namespace kestrel
