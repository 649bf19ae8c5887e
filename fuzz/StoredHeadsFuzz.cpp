// Stored-file heads: any file content, judged by every tool, gives an
// answer and a kind inside the enumeration, whatever its length.
#include "FuzzSupport.h"

using namespace kestrel;
using namespace kestrel::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const uint8_t tool = in.Byte();
  const bool archive = tool & 0x80;
  const std::string file = PrivateFolder() + (archive ? "/head.zip" : "/head.lst");
  WriteFile(file, in.Rest());
  current_tool_var = static_cast<tool_type>((tool & 0x7F) % kToolTypeCount);
  TMKStored_File_rec rec;
  rec.stored_file_name = file;
  try {
    IsAMarlowick32BitFile(rec);
    WasAMarlowick32BitFile(rec);
    IsAnOldMarlowickFile(rec);
  } catch (const Exception &) {
  }
  if (archive) try {
      IsABatchZipFileForListType(rec);
    } catch (const Exception &) {
      // a file that is no archive raises, as the reader does
    }
  if (static_cast<size_t>(rec.stored_list_type) >= kListTypeCount) Finding("a kind out of range");
  if (rec.batch_entry_count < 0) Finding("a negative count of lists");
  return 0;
}
