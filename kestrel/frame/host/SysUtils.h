// The host's string, file and folder functions that the library relies on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Exceptions.h>

namespace kestrel {

inline constexpr char PathDelim = '/';
inline constexpr char DriveDelim = ':';

// printf-style formatting into a byte string.
std::string Format(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

// Numbers and ASCII text. StrToIntDef gives the fallback and TryStrToInt false
// where StrToInt raises; CompareText is below 0, 0 or above 0, without case.
std::string IntToStr(int64_t value);
int32_t StrToInt(std::string_view text); // raises EConvertError
int32_t StrToIntDef(std::string_view text, int32_t fallback);
bool TryStrToInt(std::string_view text, int32_t &value);
std::string UpperCase(std::string_view s); // ASCII only, like the host's
std::string LowerCase(std::string_view s);
std::string Trim(std::string_view s);
bool SameText(std::string_view a, std::string_view b);
int CompareText(std::string_view a, std::string_view b);

// Path parts. ExtractFilePath keeps the trailing delimiter.
std::string ExtractFilePath(std::string_view path);
std::string ExtractFileDir(std::string_view path);
std::string ExtractFileName(std::string_view path);
std::string ExtractFileExt(std::string_view path);
std::string ChangeFileExt(std::string_view path, std::string_view ext);
std::string IncludeTrailingPathDelimiter(std::string_view path);
std::string ExcludeTrailingPathDelimiter(std::string_view path);

// Files and folders by name: true on success, false on failure (nothing raises).
// ForceDirectories makes every missing folder of the path.
bool FileExists(std::string_view path);
bool DirectoryExists(std::string_view path);
bool DeleteFile(std::string_view path);
bool RemoveDir(std::string_view path);
bool CreateDir(std::string_view path);
bool ForceDirectories(std::string_view path);
std::string GetCurrentDir();
bool SetCurrentDir(std::string_view path);

// The host's I/O-checked folder operations, used with the error state turned
// off: they raise nothing, and IOResult gives the last error (0 after success)
// and clears it.
void ChDir(std::string_view path);
void MkDir(std::string_view path);
int32_t IOResult();

// The system's last error code (errno on this platform).
int32_t GetLastOSError();
// Raises EOSError for the system's last error: its code and the system's text.
[[noreturn]] void RaiseLastOSError();
[[noreturn]] void RaiseLastOSError(int32_t lastError);

// The running program's full file name.
std::string ParamStr0();

} // namespace kestrel
