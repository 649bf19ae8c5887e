// Lists of byte strings, each with an object pointer beside it.
//
// TStrings fixes the interface and the operations built on the virtual
// primitives; TStringList stores the items and can keep them sorted. Strings
// compare without regard to case unless CaseSensitive is set (AnsiCompareText
// and AnsiCompareStr, see AnsiStrings.h). A list does not own its objects.
//
// Text is written with CR LF after each line; reading splits at CR LF, LF or
// a lone CR.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

class TStream;

using TNotifyEvent = OfObject<void(TObject *sender)>;

inline constexpr const char *sLineBreak = "\r\n";

// The interface of the byte-string lists; tools use TStringList.
class TStrings : public TPersistent {
public:
  // Element access; a bad index raises EStringListError.
  virtual std::string Get(int32_t index) const = 0;
  virtual int32_t GetCount() const = 0;
  virtual TObject *GetObject(int32_t index) const;
  virtual void Put(int32_t index, const std::string &s);
  virtual void PutObject(int32_t index, TObject *object);
  virtual int32_t GetCapacity() const;
  virtual void SetCapacity(int32_t newCapacity);
  virtual std::string GetTextStr() const;
  virtual void SetTextStr(const std::string &text);
  virtual void SetUpdateState(bool updating);
  // Below 0, 0 or above 0; without case unless a subclass says otherwise.
  virtual int CompareStrings(const std::string &s1, const std::string &s2) const;

  virtual int32_t Add(const std::string &s);
  virtual int32_t AddObject(const std::string &s, TObject *object);
  virtual void AddStrings(const TStrings &strings);
  void Assign(TPersistent *source) override;
  virtual void Clear() = 0;
  virtual void Delete(int32_t index) = 0;
  virtual void Exchange(int32_t index1, int32_t index2);
  virtual int32_t IndexOf(const std::string &s) const;
  virtual int32_t IndexOfName(const std::string &name) const;
  virtual int32_t IndexOfObject(const TObject *object) const;
  virtual void Insert(int32_t index, const std::string &s) = 0;
  virtual void InsertObject(int32_t index, const std::string &s, TObject *object);
  virtual void LoadFromFile(const std::string &fileName);
  virtual void LoadFromStream(TStream *stream);
  virtual void Move(int32_t curIndex, int32_t newIndex);
  virtual void SaveToFile(const std::string &fileName) const;
  virtual void SaveToStream(TStream *stream) const;

  void Append(const std::string &s) { Add(s); }
  void BeginUpdate();
  void EndUpdate();
  bool Equals(const TStrings &other) const;

  int32_t Count() const { return GetCount(); }
  std::string Strings(int32_t index) const { return Get(index); }
  std::string operator[](int32_t index) const { return Get(index); }
  TObject *Objects(int32_t index) const { return GetObject(index); }
  std::string Text() const { return GetTextStr(); }
  void SetText(const std::string &text) { SetTextStr(text); }

  // name=value items.
  char NameValueSeparator = '=';
  std::string Names(int32_t index) const;
  std::string ValueFromIndex(int32_t index) const;
  std::string Values(const std::string &name) const;
  // Sets the value of a name; an empty value deletes the item.
  void SetValue(const std::string &name, const std::string &value);

  // Delimited text: items joined by Delimiter, quoted with QuoteChar when they
  // hold a blank, a control character, the delimiter or the quote.
  // CommaText uses "," and '"'.
  char Delimiter = ',';
  char QuoteChar = '"';
  std::string DelimitedText() const;
  void SetDelimitedText(const std::string &text);
  std::string CommaText() const;
  void SetCommaText(const std::string &text);

protected:
  [[noreturn]] static void Error(const char *msg, int32_t data);
  int32_t UpdateCount() const { return FUpdateCount; }

private:
  int32_t FUpdateCount = 0;
};

enum class TDuplicates : uint8_t { DuplicatesIgnore, DuplicatesAccept, DuplicatesError };

class TStringList;
using TStringListSortCompare = int (*)(TStringList *list, int32_t index1, int32_t index2);

// The concrete list: items with their objects (not owned), kept in order
// when Sorted. Duplicates tells what a sorted Add does with an equal item
// (DuplicatesError raises EStringListError); Insert on a sorted list raises
// too.
class TStringList : public TStrings {
public:
  TStringList() = default;
  ~TStringList() override;

  std::string Get(int32_t index) const override;
  int32_t GetCount() const override { return static_cast<int32_t>(FList.size()); }
  TObject *GetObject(int32_t index) const override;
  void Put(int32_t index, const std::string &s) override;
  void PutObject(int32_t index, TObject *object) override;
  int32_t GetCapacity() const override { return static_cast<int32_t>(FList.capacity()); }
  void SetCapacity(int32_t newCapacity) override;
  void SetUpdateState(bool updating) override;
  int CompareStrings(const std::string &s1, const std::string &s2) const override;

  int32_t Add(const std::string &s) override;
  int32_t AddObject(const std::string &s, TObject *object) override;
  void Clear() override;
  void Delete(int32_t index) override;
  void Exchange(int32_t index1, int32_t index2) override;
  int32_t IndexOf(const std::string &s) const override;
  void Insert(int32_t index, const std::string &s) override;
  void InsertObject(int32_t index, const std::string &s, TObject *object) override;

  // Binary search of a sorted list: true when s is there; index is its first
  // place, or where it would be inserted.
  virtual bool Find(const std::string &s, int32_t &index) const;
  virtual void Sort();
  virtual void CustomSort(TStringListSortCompare compare);

  bool Sorted() const { return FSorted; }
  void SetSorted(bool value);
  TDuplicates Duplicates = TDuplicates::DuplicatesIgnore;
  bool CaseSensitive() const { return FCaseSensitive; }
  void SetCaseSensitive(bool value);

  TNotifyEvent OnChange;
  TNotifyEvent OnChanging;

protected:
  virtual void Changed();
  virtual void Changing();
  void InsertItem(int32_t index, const std::string &s, TObject *object);

private:
  struct Item {
    std::string str;
    TObject *object = nullptr;
  };
  void CheckIndex(int32_t index) const;
  void QuickSort(int32_t l, int32_t r, TStringListSortCompare compare);
  std::vector<Item> FList;
  bool FSorted = false;
  bool FCaseSensitive = false;
};

} // namespace kestrel
