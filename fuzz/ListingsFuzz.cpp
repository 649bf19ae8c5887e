// Folder listings: any bytes read as a stored listing give true or the
// stream's error, with no more entries than the bytes hold; a listing saved
// reads back to the same bytes.
#include "FuzzSupport.h"

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

std::string Saved(TFolderful &listing) {
  TMemoryStream out;
  listing.SaveToStream(&out);
  return std::string(static_cast<const char *>(out.Memory()), static_cast<size_t>(out.GetSize()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string bytes(reinterpret_cast<const char *>(data), size);
  TMemoryStream in;
  if (!bytes.empty()) in.WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  in.SetPosition(0);
  TFolderful listing("");
  try {
    if (!listing.ReadFromStream(&in)) Finding("ReadFromStream gave false");
  } catch (const EStreamError &) {
    return 0; // cut short: the stream's error, as the readers promise
  }
  // Reserved bytes, negative counts and names cut by the end don't come back
  // as they were read; what was saved once must.
  const std::string again = Saved(listing);
  if (static_cast<size_t>(listing.fGetTotalFiles()) > size / 21)
    Finding("more entries than the bytes could hold");
  TMemoryStream copy;
  copy.WriteBuffer(again.data(), static_cast<int32_t>(again.size()));
  copy.SetPosition(0);
  TFolderful back("");
  back.ReadFromStream(&copy);
  if (Saved(back) != again) Finding("a saved listing does not read back the same");
  for (int32_t i = 0; i <= back.fGetTotalFiles(); ++i) { // one past the end too
    back.fGetAFullname(i);
    back.fGetIsZipfile(i);
  }
  return 0;
}
