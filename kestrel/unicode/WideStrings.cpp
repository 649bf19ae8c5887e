#include <kestrel/unicode/WideStrings.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/unicode/CodePages.h>
#include <kestrel/unicode/CollationKeys.h>
#include <kestrel/unicode/WideCStrings.h>
#include <kestrel/unicode/WideStrUtils.h>

namespace kestrel {

namespace {

constexpr char16_t kQuote = u'"';

// Runs a bulk operation inside one update, ending it on every way out.
class UpdateScope {
public:
  explicit UpdateScope(TWideStrings *list) : list_(list) { list_->BeginUpdate(); }
  ~UpdateScope() { list_->EndUpdate(); }
  UpdateScope(const UpdateScope &) = delete;
  UpdateScope &operator=(const UpdateScope &) = delete;

private:
  TWideStrings *list_;
};

bool IsLineBreak(char16_t c) {
  return c == 0x000A || c == 0x000B || c == 0x000C || c == 0x000D || c == 0x2028 || c == 0x2029;
}

bool IsCommaBlank(char16_t c) {
  return c >= 0x01 && c <= 0x20;
}

// The host's conversions between byte strings in the system's code page and
// wide strings.
std::u16string HostWiden(const std::string &bytes) {
  return CodePageToWideString(bytes, static_cast<uint16_t>(GetACP()));
}

// Sorts the first Count items as QuickSort (0, Count - 1) would, on keys made
// once per item; false, with the items untouched, when keys cannot stand in
// for the list's compare.
bool SortItemsOnKeys(TWideStringItemList &items, int32_t count, uint32_t language) {
  TCollationKeys keys;
  if (!keys.Begin(language, size_t(count))) return false;
  for (int32_t i = 0; i < count; ++i)
    if (!keys.Add(items[size_t(i)].FString)) return false;
  std::vector<TCollationKeyRef> &refs = keys.Refs();
  QuickSortCollationKeys(refs.data(), 0, count - 1, false);
  TWideStringItemList sorted;
  sorted.reserve(size_t(count));
  for (const TCollationKeyRef &r : refs)
    sorted.push_back(std::move(items[size_t(r.Index)]));
  std::move(sorted.begin(), sorted.end(), items.begin());
  return true;
}

std::string HostNarrow(const std::u16string &text) {
  if (text.empty() || text.size() > 0x7FFFFFFF / 4) return {};
  const auto units = static_cast<int32_t>(text.size());
  const int32_t size =
      WideCharToMultiByte(GetACP(), 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(std::max(size, 0)), '\0');
  if (size > 0)
    WideCharToMultiByte(GetACP(), 0, text.data(), units, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

} // namespace

// ---- TWideStrings

TWideStrings::TWideStrings() : Language(GetUserDefaultLCID()) {}

int32_t TWideStrings::CompareStrings(const std::u16string &S1, const std::u16string &S2) const {
  return WideCompareText(S1, S2, Language);
}

void TWideStrings::Error(const char *Msg, int32_t Data) {
  throw EStringListError(Format(Msg, static_cast<int>(Data)));
}

void TWideStrings::AssignTo(TPersistent *Dest) {
  if (auto *narrow = dynamic_cast<TStrings *>(Dest)) {
    narrow->BeginUpdate();
    try {
      narrow->Clear();
      for (int32_t i = 0; i < GetCount(); ++i)
        narrow->AddObject(HostNarrow(Get(i)), GetObject(i));
    } catch (...) {
      narrow->EndUpdate();
      throw;
    }
    narrow->EndUpdate();
  } else if (auto *wide = dynamic_cast<TWideStrings *>(Dest)) {
    UpdateScope scope(wide);
    wide->Clear();
    wide->AddStrings(this);
  } else {
    TPersistent::AssignTo(Dest);
  }
}

void TWideStrings::Assign(TPersistent *Source) {
  if (auto *wide = dynamic_cast<TWideStrings *>(Source)) {
    UpdateScope scope(this);
    Clear();
    for (int32_t i = 0; i < wide->GetCount(); ++i)
      AddObject(wide->Get(i), wide->GetObject(i));
  } else if (auto *narrow = dynamic_cast<TStrings *>(Source)) {
    UpdateScope scope(this);
    Clear();
    for (int32_t i = 0; i < narrow->GetCount(); ++i)
      AddObject(HostWiden(narrow->Get(i)), narrow->GetObject(i));
  } else {
    TPersistent::Assign(Source);
  }
}

void TWideStrings::DefineProperties(TFiler *Filer) {
  bool hasData;
  if (Filer->Ancestor) {
    auto *ancestor = dynamic_cast<TWideStrings *>(Filer->Ancestor);
    hasData = ancestor ? !Equals(ancestor) : true;
  } else {
    hasData = GetCount() > 0;
  }
  Filer->DefineProperty("WideStrings", TReaderProc::Bind<&TWideStrings::ReadData>(this),
                        TWriterProc::Bind<&TWideStrings::WriteData>(this), hasData);
}

void TWideStrings::ReadData(TReader *Reader) {
  Reader->ReadListBegin();
  {
    UpdateScope scope(this);
    Clear();
    while (!Reader->EndOfList())
      Add(Reader->ReadWideString());
  }
  Reader->ReadListEnd();
}

void TWideStrings::WriteData(TWriter *Writer) {
  Writer->WriteListBegin();
  for (int32_t i = 0; i < GetCount(); ++i)
    Writer->WriteWideString(Get(i));
  Writer->WriteListEnd();
}

int32_t TWideStrings::GetCapacity() {
  return GetCount();
}

TObject *TWideStrings::GetObject(int32_t) {
  return nullptr;
}

std::u16string TWideStrings::GetTextStr() {
  const int32_t count = GetCount();
  size_t size = 0;
  for (int32_t i = 0; i < count; ++i)
    size += Get(i).size() + 2;
  std::u16string result;
  result.reserve(size);
  for (int32_t i = 0; i < count; ++i) {
    result += Get(i);
    result += u"\r\n";
  }
  return result;
}

void TWideStrings::Put(int32_t Index, const std::u16string &S) {
  TObject *object = GetObject(Index);
  Delete(Index);
  InsertObject(Index, S, object);
}

void TWideStrings::PutObject(int32_t, TObject *) {}

void TWideStrings::SetCapacity(int32_t) {}

void TWideStrings::SetTextStr(const std::u16string &Value) {
  UpdateScope scope(this);
  Clear();
  const char16_t *p = Value.c_str(); // the walk stops at the first 0 unit
  while (*p != 0) {
    const char16_t *start = p;
    while (*p != 0 && !IsLineBreak(*p))
      ++p;
    Add(std::u16string(start, p));
    if (*p == 0x000D && p[1] == 0x000A)
      p += 2;
    else if (*p != 0)
      ++p;
  }
}

void TWideStrings::SetUpdateState(bool) {}

void TWideStrings::SetLanguage(uint32_t Value) {
  Language = Value;
}

int32_t TWideStrings::Add(const std::u16string &S) {
  int32_t result = GetCount();
  Insert(result, S);
  return result;
}

int32_t TWideStrings::AddObject(const std::u16string &S, TObject *AObject) {
  int32_t result = Add(S);
  PutObject(result, AObject);
  return result;
}

void TWideStrings::AddStrings(TStrings *Strings) {
  UpdateScope scope(this);
  for (int32_t i = 0; i < Strings->GetCount(); ++i)
    AddObject(HostWiden(Strings->Get(i)), Strings->GetObject(i));
}

void TWideStrings::AddStrings(TWideStrings *Strings) {
  UpdateScope scope(this);
  // The count is read once so that adding a list to itself ends.
  const int32_t count = Strings->GetCount();
  for (int32_t i = 0; i < count; ++i)
    AddObject(Strings->Get(i), Strings->GetObject(i));
}

void TWideStrings::Exchange(int32_t Index1, int32_t Index2) {
  UpdateScope scope(this);
  std::u16string text1 = Get(Index1);
  TObject *object1 = GetObject(Index1);
  std::u16string text2 = Get(Index2);
  TObject *object2 = GetObject(Index2);
  Put(Index1, text2);
  PutObject(Index1, object2);
  Put(Index2, text1);
  PutObject(Index2, object1);
}

char16_t *TWideStrings::GetText() {
  return StrNewW(GetTextStr().c_str());
}

int32_t TWideStrings::IndexOf(const std::u16string &S) {
  for (int32_t i = 0; i < GetCount(); ++i)
    if (CompareStrings(Get(i), S) == 0) return i;
  return -1;
}

void TWideStrings::LoadFromFile(const std::string &FileName) {
  errno = 0; // an error code left from before is no reason of this load
  try {
    TFileStream stream(FileName, 0x40);
    LoadFromStream(&stream);
  } catch (const std::exception &e) {
    // The operating system's error, as the caller expects, with the file
    // named: the open's message names it, others get the name in front.
    const int32_t code = GetLastOSError();
    std::string what = e.what();
    if (what.find(FileName) == std::string::npos) what = "\"" + FileName + "\": " + what;
    throw EOSError(code != 0 ? Format(Consts::SOSError, code, what.c_str()) : what, code);
  }
}

void TWideStrings::LoadFromStream(TStream *Stream) {
  UpdateScope scope(this);
  const int64_t size = Stream->GetSize() - Stream->Position();
  uint8_t mark[2] = {0, 0};
  const int32_t got = Stream->Read(mark, 2);
  const uint16_t order = static_cast<uint16_t>(mark[0] | mark[1] << 8);
  if (got == 2 && (order == 0xFEFF || order == 0xFFFE)) {
    SaveUnicode = true;
    const int64_t units = (size - 2) / 2;
    if (units > 0x3FFFFFFF) throw EReadError(Consts::SReadError);
    std::u16string text(static_cast<size_t>(units), u'\0');
    // All the remaining bytes are read; an odd last one is no unit and is lost.
    std::string bytes(static_cast<size_t>(size - 2), '\0');
    Stream->ReadBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
    for (size_t i = 0; i < text.size(); ++i)
      text[i] = static_cast<char16_t>(uint8_t(bytes[2 * i]) | uint8_t(bytes[2 * i + 1]) << 8);
    if (order == 0xFFFE) StrSwapByteOrder(text.data());
    SetTextStr(text);
  } else {
    SaveUnicode = false;
    if (got > 0) Stream->Seek(int64_t(-got), TSeekOrigin::soCurrent);
    if (size > 0x7FFFFFFF) throw EReadError(Consts::SReadError);
    std::string bytes(static_cast<size_t>(std::max<int64_t>(size, 0)), '\0');
    Stream->ReadBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
    SetTextStr(HostWiden(bytes));
  }
}

void TWideStrings::Move(int32_t CurIndex, int32_t NewIndex) {
  if (CurIndex == NewIndex) return;
  UpdateScope scope(this);
  std::u16string text = Get(CurIndex);
  TObject *object = GetObject(CurIndex);
  Delete(CurIndex);
  InsertObject(NewIndex, text, object);
}

void TWideStrings::SaveToFile(const std::string &FileName) {
  TFileStream stream(FileName, 0xFFFF);
  SaveToStream(&stream);
}

void TWideStrings::SaveToStream(TStream *Stream) {
  std::u16string text = GetTextStr();
  bool allowed = true;
  Saved = false;
  if (!SaveUnicode && OnConfirmConversion) {
    auto end = std::find(text.begin(), text.end(), u'\0');
    if (std::any_of(text.begin(), end, [](char16_t c) { return c > 0xFF; }))
      OnConfirmConversion(this, allowed);
  }
  if (!allowed) return;
  if (SaveUnicode) {
    std::string bytes;
    bytes.reserve(text.size() * 2 + 2);
    bytes += "\xFF\xFE";
    for (char16_t c : text) {
      bytes += static_cast<char>(c & 0xFF);
      bytes += static_cast<char>(c >> 8);
    }
    Stream->WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  } else {
    std::string bytes = HostNarrow(text);
    Stream->WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
  }
  Saved = true;
}

void TWideStrings::SetText(const char16_t *Text) {
  SetTextStr(Text ? Text : u"");
}

void TWideStrings::Append(const std::u16string &S) {
  Add(S);
}

void TWideStrings::BeginUpdate() {
  if (UpdateCount == 0) SetUpdateState(true);
  ++UpdateCount;
}

void TWideStrings::EndUpdate() {
  --UpdateCount;
  if (UpdateCount == 0) SetUpdateState(false);
}

bool TWideStrings::Equals(TWideStrings *Strings) {
  const int32_t count = GetCount();
  if (count != Strings->GetCount()) return false;
  for (int32_t i = 0; i < count; ++i)
    if (Get(i) != Strings->Get(i)) return false;
  return true;
}

std::u16string TWideStrings::GetCommaText() {
  const int32_t count = GetCount();
  if (count == 1 && Get(0).empty()) return u"\"\"";
  std::u16string result;
  for (int32_t i = 0; i < count; ++i) {
    std::u16string item = Get(i);
    const char16_t *p = item.c_str();
    while (*p > 0x20 && *p != kQuote && *p != u',')
      ++p;
    result += *p != 0 ? WideQuotedStr(item, kQuote) : item;
    result += u", ";
  }
  if (!result.empty()) result.pop_back(); // the blank behind the last comma
  return result;
}

void TWideStrings::SetCommaText(const std::u16string &Value) {
  UpdateScope scope(this);
  Clear();
  const char16_t *p = Value.c_str();
  while (IsCommaBlank(*p))
    ++p;
  while (*p != 0) {
    std::u16string item;
    if (*p == kQuote) {
      item = WideExtractQuotedStr(p, kQuote);
    } else {
      const char16_t *start = p;
      while (*p > 0x20 && *p != u',')
        ++p;
      item.assign(start, p);
    }
    Add(item);
    while (IsCommaBlank(*p))
      ++p;
    if (*p == u',') {
      do
        ++p;
      while (IsCommaBlank(*p));
    }
  }
}

std::u16string TWideStrings::GetName(int32_t Index) {
  std::u16string item = Get(Index);
  size_t eq = item.find(u'=');
  return eq == std::u16string::npos ? std::u16string() : item.substr(0, eq);
}

int32_t TWideStrings::IndexOfName(const std::u16string &Name) {
  for (int32_t i = 0; i < GetCount(); ++i) {
    std::u16string item = Get(i);
    size_t eq = item.find(u'=');
    if (eq != std::u16string::npos && CompareStrings(item.substr(0, eq), Name) == 0) return i;
  }
  return -1;
}

std::u16string TWideStrings::GetValue(const std::u16string &Name) {
  int32_t i = IndexOfName(Name);
  if (i < 0) return {};
  std::u16string item = Get(i);
  // The value starts behind the given name and "=": the found name compared
  // equal, but it may differ in length from the one given.
  return Name.size() + 1 < item.size() ? item.substr(Name.size() + 1) : std::u16string();
}

void TWideStrings::SetValue(const std::u16string &Name, const std::u16string &Value) {
  int32_t i = IndexOfName(Name);
  if (!Value.empty()) {
    if (i < 0) i = Add(u"");
    Put(i, Name + u"=" + Value);
  } else if (i >= 0) {
    Delete(i);
  }
}

int32_t TWideStrings::IndexOfObject(TObject *AObject) {
  for (int32_t i = 0; i < GetCount(); ++i)
    if (GetObject(i) == AObject) return i;
  return -1;
}

void TWideStrings::InsertObject(int32_t Index, const std::u16string &S, TObject *AObject) {
  Insert(Index, S);
  PutObject(Index, AObject);
}

// ---- TWideStringList

TWideStringList::~TWideStringList() {
  OnChange = nullptr;
  OnChanging = nullptr;
  FCount = 0;
  TWideStringItemList().swap(Items);
}

void TWideStringList::CheckIndex(int32_t Index) const {
  if (Index < 0 || Index >= FCount) Error(Consts::SListIndexError, Index);
}

void TWideStringList::Changed() {
  if (UpdateCount == 0 && OnChange) OnChange(this);
}

void TWideStringList::Changing() {
  if (UpdateCount == 0 && OnChanging) OnChanging(this);
}

std::u16string TWideStringList::Get(int32_t Index) {
  CheckIndex(Index);
  return Item(Index).FString;
}

int32_t TWideStringList::GetCapacity() {
  return static_cast<int32_t>(Items.size());
}

int32_t TWideStringList::GetCount() {
  return FCount;
}

TObject *TWideStringList::GetObject(int32_t Index) {
  CheckIndex(Index);
  return Item(Index).FObject;
}

void TWideStringList::Put(int32_t Index, const std::u16string &S) {
  if (Sorted) Error(Consts::SSortedListError, 0);
  CheckIndex(Index);
  Changing();
  Item(Index).FString = S;
  Changed();
}

void TWideStringList::PutObject(int32_t Index, TObject *AObject) {
  CheckIndex(Index);
  Changing();
  Item(Index).FObject = AObject;
  Changed();
}

void TWideStringList::SetCapacity(int32_t NewCapacity) {
  Items.resize(static_cast<size_t>(std::max(NewCapacity, FCount)));
}

void TWideStringList::SetUpdateState(bool Updating) {
  if (Updating)
    Changing();
  else
    Changed();
}

void TWideStringList::SetLanguage(uint32_t Value) {
  TWideStrings::SetLanguage(Value);
  if (Sorted) {
    Changing();
    if (FCount > 1 && !SortItemsOnKeys(Items, FCount, Language)) QuickSort(0, FCount - 1);
    Changed();
  }
}

bool TWideStringList::Find(const std::u16string &S, int32_t &Index) {
  bool result = false;
  int32_t l = 0, h = FCount - 1;
  while (l <= h) {
    int32_t i = static_cast<int32_t>(static_cast<uint32_t>(l + h) >> 1);
    int32_t c = CompareStrings(Item(i).FString, S);
    if (c < 0) {
      l = i + 1;
    } else {
      h = i - 1;
      if (c == 0) {
        result = true;
        if (Duplicates != TDuplicates::DuplicatesAccept) l = i;
      }
    }
  }
  Index = l;
  return result;
}

int32_t TWideStringList::Add(const std::u16string &S) {
  int32_t result;
  if (!Sorted) {
    result = FCount;
  } else if (Find(S, result)) {
    switch (Duplicates) {
    case TDuplicates::DuplicatesIgnore:
      return result;
    case TDuplicates::DuplicatesError:
      Error(Consts::SDuplicateString, 0);
    case TDuplicates::DuplicatesAccept:
      break;
    }
  }
  InsertItem(result, S);
  return result;
}

void TWideStringList::Clear() {
  if (FCount == 0) return;
  Changing();
  TWideStringItemList().swap(Items);
  FCount = 0;
  SetCapacity(0);
  Changed();
}

void TWideStringList::Delete(int32_t Index) {
  CheckIndex(Index);
  Changing();
  Item(Index).FString.clear();
  --FCount;
  if (Index < FCount)
    std::move(Items.begin() + Index + 1, Items.begin() + FCount + 1, Items.begin() + Index);
  Item(FCount) = TWideStringItem{};
  Changed();
}

void TWideStringList::Exchange(int32_t Index1, int32_t Index2) {
  CheckIndex(Index1);
  CheckIndex(Index2);
  Changing();
  ExchangeItems(Index1, Index2);
  Changed();
}

void TWideStringList::ExchangeItems(int32_t Index1, int32_t Index2) {
  std::swap(Item(Index1), Item(Index2));
}

void TWideStringList::Grow() {
  const int32_t capacity = static_cast<int32_t>(Items.size());
  const int32_t delta = capacity > 64 ? capacity / 4 : (capacity > 8 ? 16 : 4);
  SetCapacity(capacity + delta);
}

int32_t TWideStringList::IndexOf(const std::u16string &S) {
  if (!Sorted) return TWideStrings::IndexOf(S);
  int32_t index;
  return Find(S, index) ? index : -1;
}

void TWideStringList::Insert(int32_t Index, const std::u16string &S) {
  if (Sorted) Error(Consts::SSortedListError, 0);
  if (Index < 0 || Index > FCount) Error(Consts::SListIndexError, Index);
  InsertItem(Index, S);
}

void TWideStringList::InsertItem(int32_t Index, const std::u16string &S) {
  Changing();
  if (static_cast<int32_t>(Items.size()) == FCount) Grow();
  if (Index < FCount)
    std::move_backward(Items.begin() + Index, Items.begin() + FCount, Items.begin() + FCount + 1);
  Item(Index) = TWideStringItem{S, nullptr};
  ++FCount;
  Changed();
}

void TWideStringList::QuickSort(int32_t L, int32_t R) {
  int32_t i;
  do {
    i = L;
    int32_t j = R;
    const std::u16string pivot =
        Item(static_cast<int32_t>(static_cast<uint32_t>(L + R) >> 1)).FString;
    do {
      while (CompareStrings(Item(i).FString, pivot) < 0)
        ++i;
      while (CompareStrings(Item(j).FString, pivot) > 0)
        --j;
      if (i <= j) {
        ExchangeItems(i, j);
        ++i;
        --j;
      }
    } while (i <= j);
    if (L < j) QuickSort(L, j);
    L = i;
  } while (i < R);
}

void TWideStringList::Sort() {
  if (Sorted || FCount <= 1) return;
  Changing();
  if (!SortItemsOnKeys(Items, FCount, Language)) QuickSort(0, FCount - 1);
  Changed();
}

void TWideStringList::SetSorted(bool Value) {
  if (Sorted == Value) return;
  if (Value) Sort();
  Sorted = Value;
}

} // namespace kestrel
