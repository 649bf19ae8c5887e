// Unit Wdef: colour settings, extra fonts and their stream form.
#include <kestrel/vocabulary/WdefColours.h>

#include <bit>
#include <memory>

#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TStream.h>

namespace kestrel {

static_assert(std::endian::native == std::endian::little,
              "the extra fonts are written from memory and are little-endian");

colour_and_typeface_rec colours_and_typefaces{};

namespace {

TExtraFontRec FontRec(int32_t first, int32_t second, const TMyCanvasFontRec &colours,
                      typeface_set_type typeface) {
  TExtraFontRec rec{}; // the fill bytes too
  rec.extra_first = first;
  rec.extra_second = second;
  rec.extra_colours = colours;
  rec.extra_typeface = typeface;
  return rec;
}

} // namespace

void TExtraFontList::AddOne(int32_t first, int32_t second, const TMyCanvasFontRec &colours,
                            typeface_set_type typeface) {
  auto holder = std::make_unique<TExtraFontHolder>(FontRec(first, second, colours, typeface));
  Add(holder.get());
  holder.release();
}

void TExtraFontList::AddOne(int32_t first, int32_t second) {
  AddOne(first, second, default_colours, default_typeface);
}

void TExtraFontList::UpdateColoursAndTypeFace(const TMyCanvasFontRec &colours,
                                              typeface_set_type typeface) {
  default_colours = colours;
  default_typeface = typeface;
  for (int32_t i = 0; i < Count(); ++i)
    if (TExtraFontHolder *holder = Items(i)) {
      holder->font_rec.extra_colours = colours;
      holder->font_rec.extra_typeface = typeface;
    }
}

TExtraFontRec TExtraFontList::GetAFontFrec(int32_t index) const {
  if (index >= 0 && index < Count())
    if (const TExtraFontHolder *holder = Items(index)) return holder->font_rec;
  return TExtraFontRec{};
}

void TExtraFontList::SetAFontFrec(int32_t index, const TExtraFontRec &rec) {
  if (index >= 0 && index < Count())
    if (TExtraFontHolder *holder = Items(index)) holder->font_rec = rec;
}

bool TExtraFontList::ReadFromStream(TStream *stream) {
  int32_t count = 0;
  stream->ReadBuffer(&count, sizeof count);
  for (int32_t i = 0; i < count; ++i) {
    TExtraFontRec rec;
    stream->ReadBuffer(&rec, sizeof rec);
    auto holder = std::make_unique<TExtraFontHolder>(rec);
    Add(holder.get());
    holder.release();
  }
  return true;
}

bool TExtraFontList::SaveToStream(TStream *stream) const {
  const int32_t count = Count();
  stream->WriteBuffer(&count, sizeof count);
  for (int32_t i = 0; i < count; ++i) {
    const TExtraFontRec rec = GetAFontFrec(i);
    stream->WriteBuffer(&rec, sizeof rec);
  }
  return true;
}

TMyCanvasFontRec GetBaseandHighlightColours(const colour_and_typeface_rec &colours,
                                            TMKcolourset base, TMKcolourset highlight) {
  using enum fore_back;
  return {colours.colours[base][fore], colours.colours[highlight][fore],
          colours.colours[base][back], colours.colours[highlight][back]};
}

font_name_and_size_rec ParsedFontInfo(std::string_view text) {
  const size_t comma = text.find(',');
  int32_t size = 0;
  if (comma == std::string_view::npos || !TryStrToInt(text.substr(comma + 1, 255), size))
    return {"Arial", 10};
  return {std::string(text.substr(0, comma)), size};
}

} // namespace kestrel
