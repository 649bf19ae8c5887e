// Lists of wide strings: TWideStrings, the abstract list with an object per
// item (the owner type of the search engines), and TWideStringList, the
// concrete list that can keep itself in order under a locale.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <kestrel/frame/host/Filer.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

class TWideStrings;

// Asked before text is narrowed with loss; setting Allowed false refuses.
using TConfirmConversionEvent = OfObject<void(TWideStrings *Sender, bool &Allowed)>;

// The interface of the wide lists; tools make a TWideStringList.
class TWideStrings : public TPersistent {
public:
  // Language starts as the user's default locale.
  TWideStrings();

  // Virtual operations, in slot order.
  void AssignTo(TPersistent *Dest) override;
  void DefineProperties(TFiler *Filer) override;
  void Assign(TPersistent *Source) override;
  virtual std::u16string Get(int32_t Index) = 0;
  virtual int32_t GetCapacity();
  virtual int32_t GetCount() = 0;
  virtual TObject *GetObject(int32_t Index);
  virtual std::u16string GetTextStr();
  virtual void Put(int32_t Index, const std::u16string &S);
  virtual void PutObject(int32_t Index, TObject *AObject);
  virtual void SetCapacity(int32_t NewCapacity);
  virtual void SetTextStr(const std::u16string &Value);
  virtual void SetUpdateState(bool Updating);
  virtual void SetLanguage(uint32_t Value);
  virtual int32_t Add(const std::u16string &S);
  virtual int32_t AddObject(const std::u16string &S, TObject *AObject);
  virtual void AddStrings(TStrings *Strings);
  virtual void AddStrings(TWideStrings *Strings);
  virtual void Clear() = 0;
  virtual void Delete(int32_t Index) = 0;
  virtual void Exchange(int32_t Index1, int32_t Index2);
  // A copy of GetTextStr from StrNewW; the caller frees it with StrDisposeW.
  virtual char16_t *GetText();
  virtual int32_t IndexOf(const std::u16string &S);
  virtual void Insert(int32_t Index, const std::u16string &S) = 0;
  virtual void LoadFromFile(const std::string &FileName);
  virtual void LoadFromStream(TStream *Stream);
  virtual void Move(int32_t CurIndex, int32_t NewIndex);
  virtual void SaveToFile(const std::string &FileName);
  virtual void SaveToStream(TStream *Stream);
  virtual void SetText(const char16_t *Text);

  void Append(const std::u16string &S);
  void BeginUpdate();
  void EndUpdate();
  bool Equals(TWideStrings *Strings);
  // Raises EStringListError with Msg formatted with Data.
  [[noreturn]] static void Error(const char *Msg, int32_t Data);
  std::u16string GetCommaText();
  void SetCommaText(const std::u16string &Value);
  std::u16string GetName(int32_t Index);
  std::u16string GetValue(const std::u16string &Name);
  void SetValue(const std::u16string &Name, const std::u16string &Value);
  int32_t IndexOfName(const std::u16string &Name);
  int32_t IndexOfObject(TObject *AObject);
  void InsertObject(int32_t Index, const std::u16string &S, TObject *AObject);
  void ReadData(TReader *Reader);
  void WriteData(TWriter *Writer);

  int32_t Count() { return GetCount(); }
  std::u16string operator[](int32_t Index) { return Get(Index); }
  int32_t GetUpdateCount() const { return UpdateCount; }
  uint32_t GetLanguage() const { return Language; }

  bool Saved = false;
  bool SaveUnicode = false;
  TConfirmConversionEvent OnConfirmConversion;

protected:
  // The one text order of the lists: case ignored, under Language.
  int32_t CompareStrings(const std::u16string &S1, const std::u16string &S2) const;

  int32_t UpdateCount = 0;
  uint32_t Language = 0;
};

// One item of a TWideStringList.
struct TWideStringItem {
  std::u16string FString; // owned by the entry
  TObject *FObject;       // not owned
};
using TWideStringItemList = std::vector<TWideStringItem>;

// Items with their objects (not owned), kept in order under Language when
// sorted. A bad index raises EStringListError.
class TWideStringList : public TWideStrings {
public:
  TWideStringList() = default;
  // Listeners do not hear the destruction; objects stay the caller's.
  ~TWideStringList() override;

  std::u16string Get(int32_t Index) override;
  int32_t GetCapacity() override;
  int32_t GetCount() override;
  TObject *GetObject(int32_t Index) override;
  void Put(int32_t Index, const std::u16string &S) override;
  void PutObject(int32_t Index, TObject *AObject) override;
  void SetCapacity(int32_t NewCapacity) override;
  void SetUpdateState(bool Updating) override;
  void SetLanguage(uint32_t Value) override;
  int32_t Add(const std::u16string &S) override;
  void Clear() override;
  void Delete(int32_t Index) override;
  void Exchange(int32_t Index1, int32_t Index2) override;
  int32_t IndexOf(const std::u16string &S) override;
  void Insert(int32_t Index, const std::u16string &S) override;

  virtual void Changed();
  virtual void Changing();
  // Bisection over the items as they stand; Index is an equal item (the first
  // of them under DuplicatesAccept) or where S would go.
  virtual bool Find(const std::u16string &S, int32_t &Index);
  virtual void Sort();

  void ExchangeItems(int32_t Index1, int32_t Index2);
  void Grow();
  void InsertItem(int32_t Index, const std::u16string &S);
  void QuickSort(int32_t L, int32_t R);
  void SetSorted(bool Value);
  bool GetSorted() const { return Sorted; }

  // What a sorted Add does with a text equal to an item (the host's enumeration).
  TDuplicates Duplicates = TDuplicates::DuplicatesIgnore;
  TNotifyEvent OnChange;
  TNotifyEvent OnChanging;

private:
  void CheckIndex(int32_t Index) const;
  TWideStringItem &Item(int32_t Index) { return Items[static_cast<size_t>(Index)]; }

  TWideStringItemList Items; // its length is the capacity
  int32_t FCount = 0;
  bool Sorted = false;
};

} // namespace kestrel
