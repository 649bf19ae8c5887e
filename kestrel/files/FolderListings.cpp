// Unit PeruseDir: folder listings and their stored forms.
#include <kestrel/files/FolderListings.h>

#include <kestrel/files/FolderScanner.h>
#include <kestrel/files/myFileStreamU.h>
#include <kestrel/frame/host/Host.h>

namespace kestrel {

namespace {

TMySearchRecHolder *HolderOf(void *item) {
  return static_cast<TMySearchRecHolder *>(item);
}

TMySearchRecStoredHead HeadOf(const TMySearchRec &rec) {
  return {rec.Date, rec.Size, rec.Attr, rec.ZipNumber, 0};
}

// The sorts, with TList's compare of two items.
int CompareByName(void *a, void *b) {
  return AnsiCompareText(HolderOf(a)->Rec.Name, HolderOf(b)->Rec.Name);
}
int CompareByDate(void *a, void *b) { // newest first
  const TDateTime x = HolderOf(a)->Rec.Date, y = HolderOf(b)->Rec.Date;
  return x < y ? 1 : (x > y ? -1 : 0);
}
int CompareBySize(void *a, void *b) { // largest first
  const int32_t x = HolderOf(a)->Rec.Size, y = HolderOf(b)->Rec.Size;
  return x < y ? 1 : (x > y ? -1 : 0);
}
int CompareByAttr(void *a, void *b) {
  const int32_t x = HolderOf(a)->Rec.Attr, y = HolderOf(b)->Rec.Attr;
  return x < y ? -1 : (x > y ? 1 : 0);
}

TListSortCompare CompareFor(TMySearchRecSort sort) {
  switch (sort) {
  case TMySearchRecSort::by_name:
    return CompareByName;
  case TMySearchRecSort::by_date:
    return CompareByDate;
  case TMySearchRecSort::by_size:
    return CompareBySize;
  case TMySearchRecSort::by_attr:
    return CompareByAttr;
  default:
    return nullptr;
  }
}

} // namespace

// ---- TMySearchRecList -------------------------------------------------------

TMySearchRecList::~TMySearchRecList() {
  Clear();
}

void TMySearchRecList::Clear() {
  for (int32_t i = 0; i < Count(); ++i) {
    delete HolderOf(Get(i));
    Put(i, nullptr);
  }
  TList::Clear();
}

TMySearchRec TMySearchRecList::GetAMySearchRec(int32_t index) const {
  if (index < 0 || index >= Count() || Get(index) == nullptr) return {};
  return HolderOf(Get(index))->Rec;
}

void TMySearchRecList::AddRec(const TMySearchRec &rec) {
  auto *holder = new TMySearchRecHolder(rec);
  try {
    Add(holder);
  } catch (...) {
    delete holder;
    throw;
  }
}

bool TMySearchRecList::SaveToStream(TStream *stream) {
  const int32_t count = Count();
  stream->WriteBuffer(&count, sizeof count);
  for (int32_t i = 0; i < count; ++i) {
    const TMySearchRecHolder *holder = HolderOf(Get(i));
    if (holder == nullptr) continue;
    const TMySearchRecStoredHead head = HeadOf(holder->Rec);
    stream->WriteBuffer(&head, sizeof head);
    WriteShortString(stream, holder->Rec.Name);
  }
  return true;
}

bool TMySearchRecList::ReadFromStream(TStream *stream) {
  int32_t count = 0;
  stream->ReadBuffer(&count, sizeof count);
  // Each entry takes at least 21 bytes, so a hostile count fails at the end
  // of the stream with the stream's error rather than allocating ahead.
  for (int32_t i = 0; i < count; ++i) {
    TMySearchRecStoredHead head{};
    stream->ReadBuffer(&head, sizeof head);
    TMySearchRec rec;
    rec.Date = head.Date;
    rec.Size = head.Size;
    rec.FullSize = head.Size;
    rec.Attr = head.Attr;
    rec.ZipNumber = head.ZipNumber;
    rec.Name = ReadShortString(stream);
    AddRec(rec);
  }
  return true;
}

// ---- TFolderful -------------------------------------------------------------

TFolderful::TFolderful(const std::string &folder)
    : fList(new TMySearchRecList), fDirname(IncludeTrailingPathDelimiter(folder)) {}

TFolderful::~TFolderful() {
  delete fList;
}

void TFolderful::Free() {
  delete this;
}

bool TFolderful::SaveToStream(TStream *stream) {
  const auto sort = static_cast<uint8_t>(fCurrentSort);
  stream->WriteBuffer(&sort, 1);
  // The three values are stored in the order 2, 3, 1.
  stream->WriteBuffer(&fUserValue2, 4);
  stream->WriteBuffer(&fUserValue3, 4);
  stream->WriteBuffer(&fUserValue1, 4);
  WriteShortString(stream, fDirname);
  return fList->SaveToStream(stream);
}

bool TFolderful::SaveToFile(TFileStream *stream) {
  return SaveToStream(stream);
}

bool TFolderful::ReadFromStream(TStream *stream) {
  uint8_t sort = 0;
  stream->ReadBuffer(&sort, 1);
  // Kept as read, also a value outside the enumeration: it sorts nothing and
  // is saved back as it came. The entries keep their stored order either way.
  fCurrentSort = static_cast<TMySearchRecSort>(sort);
  stream->ReadBuffer(&fUserValue2, 4);
  stream->ReadBuffer(&fUserValue3, 4);
  stream->ReadBuffer(&fUserValue1, 4);
  fDirname = ReadShortString(stream);
  fList->Clear();
  return fList->ReadFromStream(stream);
}

bool TFolderful::ReadFromFile(TFileStream *stream) {
  return ReadFromStream(stream);
}

void TFolderful::FillList(TPeruseDir *scanner) {
  if (scanner == nullptr) {
    fList->Clear();
    return;
  }
  // A scan that fails leaves an empty listing rather than none at all, so
  // that the indexed reads keep working.
  TMySearchRecList *found = scanner->ListofAllFilesIn(fDirname);
  delete fList;
  fList = found != nullptr ? found : new TMySearchRecList;
}

const TMySearchRec *TFolderful::Entry(int32_t index) const {
  if (index >= fList->Count()) return nullptr;
  auto *holder = HolderOf(fList->Get(index)); // raises for a negative index
  return holder != nullptr ? &holder->Rec : nullptr;
}

bool TFolderful::fGetIsZipfile(int32_t index) const {
  const TMySearchRec *rec = Entry(index);
  return rec != nullptr && rec->ZipNumber > 0;
}

// An archive member's Name is already its full name through the archive, so
// the folder goes only in front of plain files.
std::string TFolderful::fGetAFullname(int32_t index) const {
  const TMySearchRec *rec = Entry(index);
  if (rec == nullptr) return "";
  return rec->ZipNumber > 0 ? rec->Name : fDirname + rec->Name;
}

TMySearchRec TFolderful::fGetASearchRec(int32_t index) const {
  const TMySearchRec *rec = Entry(index);
  return rec != nullptr ? *rec : TMySearchRec{};
}

void TFolderful::fSetASearchRec(const TMySearchRec &rec) {
  fList->AddRec(rec);
}

void TFolderful::AddAFile(const TMySearchRec &rec) {
  fList->AddRec(rec);
}

int32_t TFolderful::fGetTotalFiles() const {
  return fList->Count();
}

void TFolderful::fSetSort(TMySearchRecSort sort) {
  if (sort == fCurrentSort) return;
  if (TListSortCompare compare = CompareFor(sort)) fList->Sort(compare);
  fCurrentSort = sort;
}

bool TFolderful::fEmpty() const {
  return fList->Count() == 0;
}

std::string TFolderful::fGetDirName() const {
  return fDirname;
}

} // namespace kestrel
