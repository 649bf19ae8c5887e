// Unit myMasks: TMyMask and TMyMasks; its start-up and finalisation do no work.
#include <kestrel/search/myMasks.h>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

TMyMasks::TMyMasks(const std::string &MaskList) {
  std::string s = MaskList;
  size_t p1 = MaskList.find('('), p2 = MaskList.find(')');
  if (p1 != std::string::npos && p2 != std::string::npos && p1 < p2) // else S stays whole
    s = MaskList.substr(p1 + 1, p2 - p1 - 1);
  try {
    size_t semi;
    while ((semi = s.find(';')) != std::string::npos) {
      AddItem(s.substr(0, semi));
      s.erase(0, semi + 1);
    }
    if (!s.empty()) AddItem(s);
  } catch (...) { // a bad mask: nothing of the half-built list survives
    FreeEntries();
    throw;
  }
}

TMyMasks::~TMyMasks() {
  FreeEntries();
}

void TMyMasks::AddItem(const std::string &item) {
  // The mask and the "*.*" test see the item as given; only Masks is trimmed.
  TMaskEntry entry;
  entry.Selective = item != "*.*";
  entry.Mask = new TMask(item);
  Entries.push_back(entry);
  if (!Masks.empty()) Masks += ';';
  Masks += Trim(item);
}

bool TMyMasks::Matches(const std::string &FileName) const {
  for (const TMaskEntry &e : Entries)
    if (!e.Selective || e.Mask->Matches(FileName)) return true;
  return false;
}

void TMyMasks::FreeEntries() {
  for (TMaskEntry &e : Entries)
    delete e.Mask;
  Entries.clear();
}

void TMyMasks::Free() {
  FreeEntries();
  delete this;
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(myMasks, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
