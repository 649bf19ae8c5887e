#include <kestrel/frame/host/TStringList.h>

#include <algorithm>
#include <memory>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/host/TStream.h>

namespace kestrel {

namespace {

bool IsBlank(char c) { // the host's #1..' '
  unsigned char u = static_cast<unsigned char>(c);
  return u >= 1 && u <= ' ';
}

std::string Quoted(const std::string &s, char quote) {
  std::string r(1, quote);
  for (char c : s) {
    r += c;
    if (c == quote) r += quote;
  }
  return r + quote;
}

// Reads a quoted item at s[p] (the opening quote); doubled quotes stand for one.
std::string ExtractQuoted(const std::string &s, size_t &p, char quote) {
  std::string r;
  ++p;
  while (p < s.size()) {
    if (s[p] == quote) {
      if (p + 1 < s.size() && s[p + 1] == quote) {
        r += quote;
        p += 2;
        continue;
      }
      ++p;
      break;
    }
    r += s[p++];
  }
  return r;
}

} // namespace

// ---- TStrings ---------------------------------------------------------------

void TStrings::Error(const char *msg, int32_t data) {
  throw EStringListError(Format(msg, static_cast<int>(data)));
}

TObject *TStrings::GetObject(int32_t) const {
  return nullptr;
}

void TStrings::Put(int32_t index, const std::string &s) {
  TObject *object = GetObject(index);
  Delete(index);
  InsertObject(index, s, object);
}

void TStrings::PutObject(int32_t, TObject *) {}

int32_t TStrings::GetCapacity() const {
  return GetCount();
}

void TStrings::SetCapacity(int32_t) {}

std::string TStrings::GetTextStr() const {
  std::string text;
  for (int32_t i = 0, n = GetCount(); i < n; ++i)
    text += Get(i) + sLineBreak;
  return text;
}

void TStrings::SetTextStr(const std::string &text) {
  BeginUpdate();
  try {
    Clear();
    size_t p = 0;
    while (p < text.size()) {
      size_t e = text.find_first_of("\r\n", p);
      if (e == std::string::npos) e = text.size();
      Add(text.substr(p, e - p));
      p = e;
      if (p < text.size() && text[p] == '\r') ++p;
      if (p < text.size() && text[p] == '\n') ++p;
    }
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::SetUpdateState(bool) {}

int TStrings::CompareStrings(const std::string &s1, const std::string &s2) const {
  return AnsiCompareText(s1, s2);
}

int32_t TStrings::Add(const std::string &s) {
  int32_t index = GetCount();
  Insert(index, s);
  return index;
}

int32_t TStrings::AddObject(const std::string &s, TObject *object) {
  int32_t index = Add(s);
  PutObject(index, object);
  return index;
}

void TStrings::AddStrings(const TStrings &strings) {
  BeginUpdate();
  try {
    for (int32_t i = 0, n = strings.GetCount(); i < n; ++i)
      AddObject(strings.Get(i), strings.GetObject(i));
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::Assign(TPersistent *source) {
  auto *strings = dynamic_cast<TStrings *>(source);
  if (!strings) {
    TPersistent::Assign(source);
    return;
  }
  if (strings == this) return;
  BeginUpdate();
  try {
    Clear();
    NameValueSeparator = strings->NameValueSeparator;
    Delimiter = strings->Delimiter;
    QuoteChar = strings->QuoteChar;
    AddStrings(*strings);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::Exchange(int32_t index1, int32_t index2) {
  BeginUpdate();
  try {
    std::string s = Get(index1);
    TObject *o = GetObject(index1);
    Put(index1, Get(index2));
    PutObject(index1, GetObject(index2));
    Put(index2, s);
    PutObject(index2, o);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

int32_t TStrings::IndexOf(const std::string &s) const {
  for (int32_t i = 0, n = GetCount(); i < n; ++i)
    if (CompareStrings(Get(i), s) == 0) return i;
  return -1;
}

int32_t TStrings::IndexOfName(const std::string &name) const {
  for (int32_t i = 0, n = GetCount(); i < n; ++i) {
    std::string s = Get(i);
    size_t p = s.find(NameValueSeparator);
    if (p != std::string::npos && CompareStrings(s.substr(0, p), name) == 0) return i;
  }
  return -1;
}

int32_t TStrings::IndexOfObject(const TObject *object) const {
  for (int32_t i = 0, n = GetCount(); i < n; ++i)
    if (GetObject(i) == object) return i;
  return -1;
}

void TStrings::InsertObject(int32_t index, const std::string &s, TObject *object) {
  Insert(index, s);
  PutObject(index, object);
}

void TStrings::LoadFromFile(const std::string &fileName) {
  TFileStream stream(fileName, fmOpenRead | fmShareDenyWrite);
  LoadFromStream(&stream);
}

void TStrings::LoadFromStream(TStream *stream) {
  BeginUpdate();
  try {
    // Only what the stream holds from here on is read.
    std::string text(static_cast<size_t>(stream->Remaining()), '\0');
    int32_t done = text.empty() ? 0 : stream->Read(text.data(), static_cast<int32_t>(text.size()));
    text.resize(static_cast<size_t>(std::max(done, 0)));
    SetTextStr(text);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::Move(int32_t curIndex, int32_t newIndex) {
  if (curIndex == newIndex) return;
  BeginUpdate();
  try {
    std::string s = Get(curIndex);
    TObject *o = GetObject(curIndex);
    Delete(curIndex);
    InsertObject(newIndex, s, o);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::SaveToFile(const std::string &fileName) const {
  TFileStream stream(fileName, fmCreate);
  SaveToStream(&stream);
}

void TStrings::SaveToStream(TStream *stream) const {
  std::string text = GetTextStr();
  if (text.size() > static_cast<size_t>(INT32_MAX)) throw EWriteError(Consts::SWriteError);
  stream->WriteBuffer(text.data(), static_cast<int32_t>(text.size()));
}

void TStrings::BeginUpdate() {
  if (FUpdateCount == 0) SetUpdateState(true);
  ++FUpdateCount;
}

void TStrings::EndUpdate() {
  if (FUpdateCount == 0) return;
  if (--FUpdateCount == 0) SetUpdateState(false);
}

bool TStrings::Equals(const TStrings &other) const {
  if (GetCount() != other.GetCount()) return false;
  for (int32_t i = 0, n = GetCount(); i < n; ++i)
    if (Get(i) != other.Get(i)) return false;
  return true;
}

std::string TStrings::Names(int32_t index) const {
  std::string s = Get(index);
  size_t p = s.find(NameValueSeparator);
  return p == std::string::npos ? std::string() : s.substr(0, p);
}

std::string TStrings::ValueFromIndex(int32_t index) const {
  std::string s = Get(index);
  size_t p = s.find(NameValueSeparator);
  return p == std::string::npos ? std::string() : s.substr(p + 1);
}

std::string TStrings::Values(const std::string &name) const {
  int32_t i = IndexOfName(name);
  return i < 0 ? std::string() : ValueFromIndex(i);
}

void TStrings::SetValue(const std::string &name, const std::string &value) {
  int32_t i = IndexOfName(name);
  if (!value.empty()) {
    if (i < 0) i = Add("");
    Put(i, name + NameValueSeparator + value);
  } else if (i >= 0) {
    Delete(i);
  }
}

std::string TStrings::DelimitedText() const {
  int32_t n = GetCount();
  if (n == 1 && Get(0).empty()) return std::string(2, QuoteChar);
  std::string r;
  for (int32_t i = 0; i < n; ++i) {
    std::string s = Get(i);
    bool quote = std::any_of(s.begin(), s.end(), [&](char c) {
      return static_cast<unsigned char>(c) <= ' ' || c == QuoteChar || c == Delimiter;
    });
    if (i) r += Delimiter;
    r += quote ? Quoted(s, QuoteChar) : s;
  }
  return r;
}

void TStrings::SetDelimitedText(const std::string &text) {
  BeginUpdate();
  try {
    Clear();
    size_t p = 0, n = text.size();
    while (p < n && IsBlank(text[p]))
      ++p;
    while (p < n) {
      std::string item;
      if (text[p] == QuoteChar) {
        item = ExtractQuoted(text, p, QuoteChar);
      } else {
        size_t start = p;
        while (p<n &&static_cast<unsigned char>(text[p])> ' ' && text[p] != Delimiter)
          ++p;
        item = text.substr(start, p - start);
      }
      Add(item);
      while (p < n && IsBlank(text[p]))
        ++p;
      if (p < n && text[p] == Delimiter) {
        if (p + 1 == n) // a delimiter at the very end stands for one more, empty item
          Add("");
        ++p;
        while (p < n && IsBlank(text[p]))
          ++p;
      }
    }
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

std::string TStrings::CommaText() const {
  TStringList copy;
  copy.Delimiter = ',';
  copy.QuoteChar = '"';
  copy.AddStrings(*this);
  return copy.DelimitedText();
}

void TStrings::SetCommaText(const std::string &text) {
  char d = Delimiter, q = QuoteChar;
  Delimiter = ',';
  QuoteChar = '"';
  try {
    SetDelimitedText(text);
  } catch (...) {
    Delimiter = d;
    QuoteChar = q;
    throw;
  }
  Delimiter = d;
  QuoteChar = q;
}

// ---- TStringList -------------------------------------------------------------

TStringList::~TStringList() {
  OnChange = nullptr;
  OnChanging = nullptr;
}

void TStringList::CheckIndex(int32_t index) const {
  if (index < 0 || index >= GetCount()) Error(Consts::SListIndexError, index);
}

std::string TStringList::Get(int32_t index) const {
  CheckIndex(index);
  return FList[static_cast<size_t>(index)].str;
}

TObject *TStringList::GetObject(int32_t index) const {
  CheckIndex(index);
  return FList[static_cast<size_t>(index)].object;
}

void TStringList::Put(int32_t index, const std::string &s) {
  if (FSorted) Error(Consts::SSortedListError, 0);
  CheckIndex(index);
  Changing();
  FList[static_cast<size_t>(index)].str = s;
  Changed();
}

void TStringList::PutObject(int32_t index, TObject *object) {
  CheckIndex(index);
  Changing();
  FList[static_cast<size_t>(index)].object = object;
  Changed();
}

void TStringList::SetCapacity(int32_t newCapacity) {
  if (newCapacity < GetCount()) Error(Consts::SListCapacityError, newCapacity);
  FList.reserve(static_cast<size_t>(newCapacity));
}

void TStringList::SetUpdateState(bool updating) {
  if (updating)
    Changing();
  else
    Changed();
}

int TStringList::CompareStrings(const std::string &s1, const std::string &s2) const {
  return FCaseSensitive ? AnsiCompareStr(s1, s2) : AnsiCompareText(s1, s2);
}

int32_t TStringList::Add(const std::string &s) {
  return AddObject(s, nullptr);
}

int32_t TStringList::AddObject(const std::string &s, TObject *object) {
  int32_t index = GetCount();
  if (FSorted && Find(s, index)) {
    switch (Duplicates) {
    case TDuplicates::DuplicatesIgnore:
      return index;
    case TDuplicates::DuplicatesError:
      Error(Consts::SDuplicateString, 0);
    case TDuplicates::DuplicatesAccept:
      break;
    }
  }
  InsertItem(index, s, object);
  return index;
}

void TStringList::Clear() {
  if (FList.empty()) return;
  Changing();
  FList.clear();
  Changed();
}

void TStringList::Delete(int32_t index) {
  CheckIndex(index);
  Changing();
  FList.erase(FList.begin() + index);
  Changed();
}

void TStringList::Exchange(int32_t index1, int32_t index2) {
  CheckIndex(index1);
  CheckIndex(index2);
  Changing();
  std::swap(FList[static_cast<size_t>(index1)], FList[static_cast<size_t>(index2)]);
  Changed();
}

int32_t TStringList::IndexOf(const std::string &s) const {
  if (!FSorted) return TStrings::IndexOf(s);
  int32_t index;
  return Find(s, index) ? index : -1;
}

void TStringList::Insert(int32_t index, const std::string &s) {
  InsertObject(index, s, nullptr);
}

void TStringList::InsertObject(int32_t index, const std::string &s, TObject *object) {
  if (FSorted) Error(Consts::SSortedListError, 0);
  if (index < 0 || index > GetCount()) Error(Consts::SListIndexError, index);
  InsertItem(index, s, object);
}

void TStringList::InsertItem(int32_t index, const std::string &s, TObject *object) {
  Changing();
  FList.insert(FList.begin() + index, Item{s, object});
  Changed();
}

bool TStringList::Find(const std::string &s, int32_t &index) const {
  // Lower bound: the first item that does not sort before s.
  int32_t l = 0, h = GetCount() - 1;
  bool found = false;
  while (l <= h) {
    int32_t i = l + (h - l) / 2;
    int c = CompareStrings(FList[static_cast<size_t>(i)].str, s);
    if (c < 0) {
      l = i + 1;
    } else {
      h = i - 1;
      if (c == 0) found = true;
    }
  }
  index = l;
  return found;
}

void TStringList::Sort() {
  if (FSorted || GetCount() < 2) return;
  Changing();
  std::stable_sort(FList.begin(), FList.end(), [this](const Item &a, const Item &b) {
    return CompareStrings(a.str, b.str) < 0;
  });
  Changed();
}

void TStringList::QuickSort(int32_t l, int32_t r, TStringListSortCompare compare) {
  int32_t i, j;
  do {
    i = l;
    j = r;
    int32_t p = l + (r - l) / 2;
    do {
      // The bounds only matter for a compare that is not an order.
      while (i < r && compare(this, i, p) < 0)
        ++i;
      while (j > l && compare(this, j, p) > 0)
        --j;
      if (i <= j) {
        std::swap(FList[static_cast<size_t>(i)], FList[static_cast<size_t>(j)]);
        if (p == i)
          p = j;
        else if (p == j)
          p = i;
        ++i;
        --j;
      }
    } while (i <= j);
    if (l < j) QuickSort(l, j, compare);
    l = i;
  } while (i < r);
}

void TStringList::CustomSort(TStringListSortCompare compare) {
  if (FSorted || GetCount() < 2) return;
  Changing();
  QuickSort(0, GetCount() - 1, compare);
  Changed();
}

void TStringList::SetSorted(bool value) {
  if (FSorted == value) return;
  if (value) Sort();
  FSorted = value;
}

void TStringList::SetCaseSensitive(bool value) {
  if (FCaseSensitive == value) return;
  FCaseSensitive = value;
  if (FSorted) {
    FSorted = false;
    Sort();
    FSorted = true;
  }
}

void TStringList::Changed() {
  if (UpdateCount() == 0 && OnChange) OnChange(this);
}

void TStringList::Changing() {
  if (UpdateCount() == 0 && OnChanging) OnChanging(this);
}

} // namespace kestrel
