// Unit myMasks: a mask that remembers its text, and a list of file-name masks
// written the way a file dialog's filter line writes them.
#pragma once

#include <string>
#include <vector>

#include <kestrel/frame/host/Masks.h>
#include <kestrel/frame/host/TObject.h>

namespace kestrel {

// One mask and the text it was made from.
class TMyMask : public TMask {
public:
  explicit TMyMask(const std::string &Mask) : TMask(Mask), MaskText(Mask) {}
  std::string MaskText;
};

// One mask of a TMyMasks.
struct TMaskEntry {
  bool Selective = true; // false for an entry of exactly "*.*", which matches any name
  TMask *Mask = nullptr; // owned by the list
};

// A list such as "*.txt;*.doc", or "Text files (*.txt;*.doc)": only the text
// between the first "(" and the first ")" counts when "(" comes first. Fixed
// at construction; release it with Free.
class TMyMasks : public TObject {
public:
  explicit TMyMasks(const std::string &MaskList);
  ~TMyMasks() override;

  // The masks in force, trimmed and joined by ";".
  std::string CurrentMasks() const { return Masks; }
  // True when an entry matches, tried in order; false for an empty list.
  bool Matches(const std::string &FileName) const;
  // Frees the entries' masks, then the object.
  void Free();

  const std::vector<TMaskEntry> &GetEntries() const { return Entries; }

private:
  void AddItem(const std::string &item);
  void FreeEntries();
  std::string Masks;
  std::vector<TMaskEntry> Entries;
};

} // namespace kestrel
