// Folder listings: a list of found files and archive members, one folder's
// listing with its sort order, and their stored forms.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/files/PeruseDirRecords.h>
#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/TStream.h>

namespace kestrel {

class TFileStream;
class TPeruseDir;

// Carries a copy of one record so that it can sit in a list.
class TMySearchRecHolder : public TObject {
public:
  explicit TMySearchRecHolder(const TMySearchRec &rec) : Rec(rec) {}
  TMySearchRec Rec;
};

enum class TMySearchRecSort : uint8_t { none, by_name, by_date, by_size, by_attr };

// A list that owns its holders.
class TMySearchRecList : public TList {
public:
  ~TMySearchRecList() override;
  // Frees every holder, then empties the list.
  void Clear() override;
  // A copy of the record at index; a zeroed record outside the list.
  TMySearchRec GetAMySearchRec(int32_t index) const;
  // Appends a holder with a copy of the record.
  void AddRec(const TMySearchRec &rec);
  // Appends the stored entries; true, or the stream's exception.
  bool ReadFromStream(TStream *stream);
  // Writes the count and every entry; true, or the stream's exception.
  bool SaveToStream(TStream *stream);
};

// One folder's listing.
class TFolderful : public TObject {
public:
  explicit TFolderful(const std::string &folder);
  ~TFolderful() override;
  // Frees the list, then the object.
  void Free();

  bool ReadFromStream(TStream *stream);
  bool ReadFromFile(TFileStream *stream);
  bool SaveToStream(TStream *stream);
  bool SaveToFile(TFileStream *stream);
  // Lists the folder with the scanner; null empties the listing.
  void FillList(TPeruseDir *scanner);

  bool fGetIsZipfile(int32_t index) const;
  std::string fGetAFullname(int32_t index) const;
  TMySearchRec fGetASearchRec(int32_t index) const;
  void fSetASearchRec(const TMySearchRec &rec);
  void AddAFile(const TMySearchRec &rec);
  int32_t fGetTotalFiles() const;
  void fSetSort(TMySearchRecSort sort);
  bool fEmpty() const;
  std::string fGetDirName() const;

  // Published properties.
  TMySearchRecSort CurrentSort() const { return fCurrentSort; }
  void SetCurrentSort(TMySearchRecSort sort) { fSetSort(sort); }
  std::string Dirname() const { return fGetDirName(); }
  void SetDirname(const std::string &dirname) { fDirname = dirname; }

  TMySearchRecSort fCurrentSort = TMySearchRecSort::none;
  int32_t fUserValue1 = 0;
  int32_t fUserValue2 = 0;
  int32_t fUserValue3 = 0;
  TMySearchRecList *fList = nullptr; // owned; never null
  std::string fDirname;

private:
  // The entry at index; the list's index error for a negative index.
  const TMySearchRec *Entry(int32_t index) const;
};

} // namespace kestrel
