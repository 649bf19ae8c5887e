#include <kestrel/search/SearchEngine.h>

#include <kestrel/frame/host/Consts.h>

namespace kestrel {
namespace {

void *AsItem(uint32_t value) {
  return reinterpret_cast<void *>(static_cast<uintptr_t>(value));
}
uint32_t AsNumber(void *item) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(item));
}

// Item number 2 x Index, wrapped to the list's 32-bit signed index so that a
// huge index fails in the list's own check rather than here.
int32_t ItemIndex(uint32_t index, uint32_t half) {
  return static_cast<int32_t>(static_cast<uint32_t>(index * 2u + half));
}

} // namespace

TSearchEngine::TSearchEngine(TWideStrings *AOwner) : Results(new TList), Owner(AOwner) {}

TSearchEngine::~TSearchEngine() {
  TSearchEngine::Clear();
  FreeAndNil(Results);
}

uint32_t TSearchEngine::GetCount() {
  return static_cast<uint32_t>(Results->Count()) / 2;
}

void TSearchEngine::AddResult(uint32_t Start, uint32_t Stop) {
  Results->Add(AsItem(Start));
  Results->Add(AsItem(Stop));
}

void TSearchEngine::Clear() {
  ClearResults();
}

void TSearchEngine::ClearResults() {
  Results->Clear();
}

void TSearchEngine::DeleteResult(uint32_t Index) {
  // A huge Index would make 2 x Index wrap; it must fail, not hit a pair.
  if (Index > 0x3FFFFFFFu)
    TList::RaiseListError(Consts::SListIndexError, static_cast<int32_t>(Index));
  Results->Delete(ItemIndex(Index, 0));
  Results->Delete(ItemIndex(Index, 0));
}

void TSearchEngine::GetResult(uint32_t Index, int32_t &Start, int32_t &Stop) {
  if (Index > 0x3FFFFFFFu)
    TList::RaiseListError(Consts::SListIndexError, static_cast<int32_t>(Index));
  Start = static_cast<int32_t>(AsNumber(Results->Get(ItemIndex(Index, 0))));
  Stop = static_cast<int32_t>(AsNumber(Results->Get(ItemIndex(Index, 1))));
}

} // namespace kestrel
