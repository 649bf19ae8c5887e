// Colours and fonts of the tools' grids: the colour settings of a tool, the
// colours of one thing in a cell, stretches of a cell in another font and
// their stream form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>
#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/WdefLists.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

class TStream;

// A colour as the host gives it: 0x00BBGGRR, or a system colour when negative.
using TColor = int32_t;

enum class fore_back : uint8_t { fore, back };

enum class typeface_type : uint8_t { normal, bold, italics, underline, strikeout };
using typeface_set_type = TSet<typeface_type, 1>;
static_assert(sizeof(typeface_set_type) == 1);

// All the colour settings of a tool: a colour for each role, fore and back
// (fore first within a role), then a typeface for each role.
struct colour_and_typeface_rec {
  EnumTable<TMKcolourset, EnumTable<fore_back, TColor, 2>, kColoursetCount> colours;
  EnumTable<TMKcolourset, typeface_set_type, kColoursetCount> typefaces;
};
static_assert(sizeof(colour_and_typeface_rec) == 144);
static_assert(offsetof(colour_and_typeface_rec, typefaces) == 128);

// The tool's colour settings; all zero at load.
extern colour_and_typeface_rec colours_and_typefaces;

// The colours of one thing in a cell.
struct TMyCanvasFontRec {
  TColor base_fore;
  TColor highlight_fore;
  TColor base_back;
  TColor highlight_back;
};
static_assert(sizeof(TMyCanvasFontRec) == 16);

// One stretch in another font. Its form in memory is its form on a stream,
// fill bytes included.
#pragma pack(push, 1)
struct TExtraFontRec {
  int32_t extra_first; // the tools' own numbers
  int32_t extra_second;
  TMyCanvasFontRec extra_colours;
  typeface_set_type extra_typeface;
  uint8_t extra_fill[3]; // no meaning; kept as read
};
#pragma pack(pop)
static_assert(sizeof(TExtraFontRec) == 28);
static_assert(offsetof(TExtraFontRec, extra_second) == 4);
static_assert(offsetof(TExtraFontRec, extra_colours) == 8);
static_assert(offsetof(TExtraFontRec, extra_typeface) == 24);
static_assert(offsetof(TExtraFontRec, extra_fill) == 25);

class TExtraFontHolder : public TObject {
public:
  explicit TExtraFontHolder(const TExtraFontRec &rec) : font_rec(rec) {}
  TExtraFontRec font_rec;
};

class TColoursHolder : public TObject {
public:
  explicit TColoursHolder(const TMyCanvasFontRec &rec) : colours(rec) {}
  TMyCanvasFontRec colours;
};

// The extra fonts of a cell, owned by the list. Stream form: a signed 32-bit
// little-endian count, then that many 28-byte TExtraFontRec in list order.
class TExtraFontList : public THolderList<TExtraFontHolder> {
public:
  TExtraFontList() : default_colours{}, default_typeface{} {}
  TExtraFontList(const TMyCanvasFontRec &colours, typeface_set_type typeface)
      : default_colours(colours), default_typeface(typeface) {}

  // Adds a new holder at the end.
  void AddOne(int32_t first, int32_t second, const TMyCanvasFontRec &colours,
              typeface_set_type typeface);
  // The same with the list's defaults.
  void AddOne(int32_t first, int32_t second);
  // Sets the defaults and the colours and typeface of every item.
  void UpdateColoursAndTypeFace(const TMyCanvasFontRec &colours, typeface_set_type typeface);
  // A copy of the item's record; zeroed for an index out of range.
  TExtraFontRec GetAFontFrec(int32_t index) const;
  // Replaces the item's record; an index out of range changes nothing.
  void SetAFontFrec(int32_t index, const TExtraFontRec &rec);

  // Appends the records of the stream form to what the list holds. A stream
  // error (the host's read error where the stream ends early) reaches the
  // caller, and the records read whole before stay in the list.
  bool ReadFromStream(TStream *stream);
  // Writes the stream form; a stream error reaches the caller.
  bool SaveToStream(TStream *stream) const;

  TMyCanvasFontRec default_colours;
  typeface_set_type default_typeface;
};

// base_fore and base_back from the base role, highlight_fore and
// highlight_back from the highlight role.
TMyCanvasFontRec GetBaseandHighlightColours(const colour_and_typeface_rec &colours,
                                            TMKcolourset base, TMKcolourset highlight);

struct font_name_and_size_rec {
  std::string font_name;
  int32_t font_size;
};

// "name,size": the name before the first comma, the size from at most 255
// characters after it. Without a comma, or with a size that is no number,
// "Arial" and 10.
font_name_and_size_rec ParsedFontInfo(std::string_view text);

} // namespace kestrel
