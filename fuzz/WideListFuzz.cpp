// Wide string lists: any bytes load as text (with or without a byte-order
// mark) or as the host's streamed property, and what loaded saves and loads
// back to the same items.
#include "FuzzSupport.h"

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

std::u16string Joined(TWideStrings &list) {
  std::u16string all;
  for (int32_t i = 0; i < list.GetCount(); ++i)
    all += list.Get(i) + u'\n';
  return all;
}

void LoadText(const std::string &bytes) {
  TMemoryStream in;
  if (!bytes.empty()) in.WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  in.SetPosition(0);
  TWideStringList list;
  list.LoadFromStream(&in);
  if (!list.SaveUnicode) return; // 8-bit text: the narrowing may lose characters
  TMemoryStream saved;
  list.SaveToStream(&saved);
  saved.SetPosition(0);
  TWideStringList back;
  back.LoadFromStream(&saved);
  if (Joined(back) != Joined(list)) Finding("a UTF-16 list saved and loaded changed");
}

void LoadStreamed(const std::string &bytes) {
  TMemoryStream in;
  if (!bytes.empty()) in.WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  in.SetPosition(0);
  TWideStringList list;
  try {
    TReader(&in).ReadProperties(&list);
  } catch (const EReadError &) {
    return;
  }
  TMemoryStream saved;
  TWriter(&saved).WriteProperties(&list);
  saved.SetPosition(0);
  TWideStringList back;
  TReader(&saved).ReadProperties(&back);
  if (Joined(back) != Joined(list)) Finding("a streamed list written and read changed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const bool streamed = in.Byte() & 1;
  const std::string bytes = in.Rest();
  if (streamed)
    LoadStreamed(bytes);
  else
    LoadText(bytes);
  return 0;
}
