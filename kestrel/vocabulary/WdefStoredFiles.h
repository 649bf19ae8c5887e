// Stored-file identification: the head of a stored list, the question put to
// a file, the four tests on a file, and the names of files inside archives.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>
#include <kestrel/vocabulary/WdefListTypes.h>

namespace kestrel {

using current_WT_data_list_type = ShortString<40>;

static_assert(std::endian::native == std::endian::little,
              "stored heads are read in place and are little-endian");

// The head of a stored 32-bit list: a format number and the kind's signature.
#pragma pack(push, 1)
struct TCheckSignature {
  int32_t signature_number;
  uint8_t header_reserved[12]; // written by the tools, ignored here
  current_WT_data_list_type signature;
};
#pragma pack(pop)
static_assert(sizeof(TCheckSignature) == 57);
static_assert(offsetof(TCheckSignature, signature_number) == 0);
static_assert(offsetof(TCheckSignature, header_reserved) == 4);
static_assert(offsetof(TCheckSignature, signature) == 16);

// The question put to a stored file and its answer.
struct TMKStored_File_rec {
  std::string stored_file_name; // filled in by the caller
  int32_t reserved = 0;         // the tools' own; the tests leave it alone
  int32_t batch_entry_count = 0;
  list_type stored_list_type = list_type::none_in_use;
};

// The older head: a count and up to 40 characters.
inline constexpr int32_t kOlderHeadSize = 41;
// The comment that marks a batch archive, followed by the kinds' extension.
inline constexpr std::string_view kBatchZipCommentPrefix = "Marlow Batch file ";

// The list kind whose signature the head carries; none_in_use when none.
list_type DiskFileType(const TCheckSignature &header);

// The file has the older head of a known kind.
bool IsAnOldMarlowickFile(TMKStored_File_rec &rec);
// The file is a batch archive; the kind comes from its comment.
bool IsABatchZipFileForListType(TMKStored_File_rec &rec);
// The file is a 32-bit list of a format older than today's.
bool WasAMarlowick32BitFile(TMKStored_File_rec &rec);
// The file is a 32-bit list of today's format for the running tool.
bool IsAMarlowick32BitFile(TMKStored_File_rec &rec);

// Names of files within archives: the archive's full name, a delimiter and
// the member's stored name.
bool IsAZipFile(std::string_view name);
bool IsWithinAZipFile(std::string_view name);
std::string ZipFileFullFileName(std::string_view name);
std::string ZipFileWantedFileNameWithin(std::string_view name);

} // namespace kestrel
