// The host framework's message texts, defined once for every class that raises.
#pragma once

namespace kestrel::Consts {

inline constexpr const char *SListIndexError = "List index out of bounds (%d)";
inline constexpr const char *SListCapacityError = "List capacity out of bounds (%d)";
inline constexpr const char *SListCountError = "List count out of bounds (%d)";
inline constexpr const char *SDuplicateString = "String list does not allow duplicates";
inline constexpr const char *SSortedListError = "Operation not allowed on sorted string list";
inline constexpr const char *SReadError = "Stream read error";
inline constexpr const char *SWriteError = "Stream write error";
inline constexpr const char *SFOpenError = "Cannot open file %s";
inline constexpr const char *SFOpenErrorEx = "Cannot open file \"%s\". %s";
inline constexpr const char *SFCreateError = "Cannot create file %s";
inline constexpr const char *SFCreateErrorEx = "Cannot create file \"%s\". %s";
inline constexpr const char *SResNotFound = "Resource %s not found";
inline constexpr const char *SCantWriteResourceStreamError =
    "Can't write to a read-only resource stream";
inline constexpr const char *SMemoryStreamError = "Out of memory while expanding memory stream";
inline constexpr const char *SInvalidInteger = "'%s' is not a valid integer value";
inline constexpr const char *SInvalidDate = "'%s' is not a valid date";
inline constexpr const char *SInvalidTime = "'%s' is not a valid time";
inline constexpr const char *SInvalidDateTime = "'%s' is not a valid date and time";
inline constexpr const char *SInvalidFloat = "'%s' is not a valid floating point value";
inline constexpr const char *SInvalidBoolean = "'%s' is not a valid boolean value";
inline constexpr const char *SInvalidMask = "'%s' is an invalid mask at (%d)";
inline constexpr const char *SInvalidPropertyValue = "Invalid property value";
inline constexpr const char *SOSError = "System Error.  Code: %d.\n%s";
inline constexpr const char *SUnkOSError = "A call to an OS function failed";
inline constexpr const char *SUnknownProperty = "Property %s does not exist";
inline constexpr const char *SReadListError = "Invalid stream format";
inline constexpr const char *SDateEncodeError = "Invalid argument to date encode";
inline constexpr const char *STimeEncodeError = "Invalid argument to time encode";
inline constexpr const char *SSharingViolation =
    "The file is in use by another open file that does not share it";

} // namespace kestrel::Consts
