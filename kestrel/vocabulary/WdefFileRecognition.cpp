// Unit Wdef: the four tests that recognise a stored file by its head.
#include <kestrel/vocabulary/WdefStoredFiles.h>

#include <memory>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/zip/VCLUnZip.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

namespace {

// The shortest files that can hold a head and at least one byte after it.
constexpr int64_t kMin32BitFileSize = sizeof(TCheckSignature) + 1;
constexpr int64_t kMinOlderFileSize = kOlderHeadSize + 1;

void StartAnswer(TMKStored_File_rec &rec) {
  rec.stored_list_type = list_type::none_in_use;
  rec.batch_entry_count = 0;
}

// Opens the file for reading beside other readers and writers; an existing
// file that can't be opened raises to the caller.
std::unique_ptr<TFileStream> OpenShared(const std::string &name) {
  return std::make_unique<TFileStream>(name, fmOpenRead | fmShareDenyNone);
}

// Reads the 32-bit head; false when the file is missing, too short, or the
// read fails.
bool Read32BitHead(TMKStored_File_rec &rec, TCheckSignature &head) {
  StartAnswer(rec);
  if (!FileExists(rec.stored_file_name)) return false;
  auto stream = OpenShared(rec.stored_file_name);
  try {
    if (stream->GetSize() < kMin32BitFileSize) return false;
    stream->ReadBuffer(&head, sizeof head);
    return true;
  } catch (const Exception &) {
    return false;
  }
}

// The older signature: the count byte, then the text from offset 1 (or 2
// when offset 1 holds 0) up to a zero byte or the head's end, cut to the
// count. A count past the text found gives a string that equals no row.
bool OlderSignature(const uint8_t (&head)[kOlderHeadSize], std::string &signature) {
  const size_t start = head[1] == 0 ? 2 : 1;
  size_t end = start;
  while (end < kOlderHeadSize && head[end] != 0)
    ++end;
  const size_t count = head[0];
  if (count > end - start) return false;
  signature.assign(reinterpret_cast<const char *>(head) + start, count);
  return true;
}

} // namespace

bool IsAnOldMarlowickFile(TMKStored_File_rec &rec) {
  StartAnswer(rec);
  if (!FileExists(rec.stored_file_name)) return false;
  auto stream = OpenShared(rec.stored_file_name);
  try {
    if (stream->GetSize() < kMinOlderFileSize) return false;
    uint8_t head[kOlderHeadSize];
    stream->ReadBuffer(head, kOlderHeadSize);
    std::string signature;
    if (!OlderSignature(head, signature)) return false;
    // Rows past the table's texts are empty: a head of length 0 matches the
    // first of them, as plain string equality has it.
    for (size_t i = 0; i < kListTypeCount; ++i)
      if (signature == older_signature_table.rows[i]) {
        rec.stored_list_type = static_cast<list_type>(i);
        return true;
      }
    return false;
  } catch (const Exception &) {
    return false;
  }
}

bool WasAMarlowick32BitFile(TMKStored_File_rec &rec) {
  TCheckSignature head{};
  if (!Read32BitHead(rec, head)) return false;
  const int32_t number = head.signature_number;
  const int32_t current = CurrentSignature[current_tool_var];
  if (number >= 35 && number < current) {
    rec.stored_list_type = DiskFileType(head);
    return rec.stored_list_type < list_type::spare10;
  }
  if (number >= 35 && number == current) {
    // Today's number with the older database literal: written by a tool
    // before the database took its own signature.
    rec.stored_list_type = DiskFileType(head);
    return rec.stored_list_type == list_type::spare10;
  }
  return false;
}

bool IsAMarlowick32BitFile(TMKStored_File_rec &rec) {
  TCheckSignature head{};
  if (!Read32BitHead(rec, head)) return false;
  if (head.signature_number != CurrentSignature[current_tool_var]) return false;
  rec.stored_list_type = DiskFileType(head);
  return rec.stored_list_type < list_type::spare10;
}

bool IsABatchZipFileForListType(TMKStored_File_rec &rec) {
  StartAnswer(rec);
  auto zip = std::make_unique<TVCLUnZip>(nullptr);
  zip->SetZipName(rec.stored_file_name);
  zip->ReadZip();
  std::string comment = zip->GetZipComment();
  const int32_t count = zip->GetCount();
  const bool result =
      count > 0 && comment.size() > kBatchZipCommentPrefix.size() &&
      comment.compare(0, kBatchZipCommentPrefix.size(), kBatchZipCommentPrefix) == 0;
  if (result) {
    comment.erase(0, kBatchZipCommentPrefix.size());
    for (size_t i = 0; i < kListTypeCount; ++i)
      if (comment == DefaultExtFromListType(static_cast<list_type>(i))) {
        rec.stored_list_type = static_cast<list_type>(i);
        rec.batch_entry_count = count;
        break;
      }
  }
  return result;
}

} // namespace kestrel
