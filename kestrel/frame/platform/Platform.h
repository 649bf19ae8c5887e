// The platform layer: the system operations the library's units call, under
// their Windows names and with the contracts those units rely on, built on
// POSIX and ICU.
//
// The boundary of the system: only kestrel/frame touches the operating system,
// ICU and libzip. Inside it, platform/ gives the operations (this header;
// Nls.h for locales, code pages and collation; CharCase.h for the simple case
// of a code point; TempPath.h; Resources.h), while host/ and zip/ rebuild the
// closed class framework and the closed ZIP component, which stood on the
// system themselves, directly on POSIX and libzip. Everything else (unicode,
// search, vocabulary, language, files) reaches the system only through these.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// The platform family the host reports; 2 is the NT family.
inline constexpr int32_t VER_PLATFORM_WIN32_NT = 2;
extern int32_t Win32Platform;

// ---- Message boxes --------------------------------------------------------
inline constexpr uint32_t MB_OK = 0x0000;
inline constexpr uint32_t MB_OKCANCEL = 0x0001;
inline constexpr uint32_t MB_ABORTRETRYIGNORE = 0x0002;
inline constexpr uint32_t MB_YESNOCANCEL = 0x0003;
inline constexpr uint32_t MB_YESNO = 0x0004;
inline constexpr uint32_t MB_RETRYCANCEL = 0x0005;
inline constexpr uint32_t MB_ICONHAND = 0x0010;
inline constexpr uint32_t MB_ICONQUESTION = 0x0020;
inline constexpr uint32_t MB_ICONEXCLAMATION = 0x0030;
inline constexpr uint32_t MB_ICONASTERISK = 0x0040;
inline constexpr uint32_t MB_TASKMODAL = 0x2000;

inline constexpr int32_t IDOK = 1;
inline constexpr int32_t IDCANCEL = 2;
inline constexpr int32_t IDABORT = 3;
inline constexpr int32_t IDRETRY = 4;
inline constexpr int32_t IDIGNORE = 5;
inline constexpr int32_t IDYES = 6;
inline constexpr int32_t IDNO = 7;

// Answers a message box: text, caption and type flags in, button number out.
using MessageBoxHandler =
    std::function<int32_t(const std::string &text, const std::string &caption, uint32_t type)>;

// Installs a handler (tests script answers with one) and returns the previous
// one. An empty handler restores the default: ask on the terminal when both
// standard input and standard error are terminals, else give the safe answer.
MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler);

// The safe answer for a box of these flags: OK for a lone OK button, otherwise
// Cancel, No or Abort, whichever the box offers.
int32_t SafeMessageBoxAnswer(uint32_t type);

// Puts the question to the handler and gives its button number (IDOK ...).
// The owner window is ignored; a null text or caption counts as empty.
int32_t MessageBoxA(HWND owner, const char *text, const char *caption, uint32_t type);

// ---- Modules --------------------------------------------------------------
// The library's own module handle.
HMODULE KestrelModuleHandle();
// Full file name of a module; null names the running program.
std::string GetModuleFileNameA(HMODULE module);
HMODULE LoadLibraryA(const char *fileName);
void *GetProcAddress(HMODULE module, const char *procName);
bool FreeLibrary(HMODULE module);

// ---- Paths ----------------------------------------------------------------
// Drive letters map to mount points through this table (C: is "/" at start).
void SetDriveRoot(char drive, std::string root);
std::string DriveRoot(char drive); // empty when the letter has no mapping
// Turns a path that starts with a mapped drive ("C:" or "C:/...") into the
// native path; any other path comes back as it is.
std::string NativePath(std::string_view path);

} // namespace kestrel
