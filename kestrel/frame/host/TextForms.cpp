// The host's text forms of numbers, dates and Booleans (declared in SysUtils.h).
#include <kestrel/frame/host/SysUtils.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/DateUtils.h>

namespace kestrel {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view TrimView(std::string_view s) {
  while (!s.empty() && static_cast<unsigned char>(s.front()) <= ' ')
    s.remove_prefix(1);
  while (!s.empty() && static_cast<unsigned char>(s.back()) <= ' ')
    s.remove_suffix(1);
  return s;
}

// The significant digits of a nonzero finite value, rounded to `digits`
// places, and its decimal exponent: value = 0.d1d2... * 10^(exponent + 1).
void Significant(double value, int digits, std::string &mantissa, int &exponent) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*e", digits - 1, std::fabs(value));
  mantissa.clear();
  const char *p = buf;
  for (; *p && *p != 'e'; ++p)
    if (IsDigit(*p)) mantissa += *p;
  exponent = *p ? std::atoi(p + 1) : 0;
}

} // namespace

// ---- Floating-point numbers ---------------------------------------------------

std::string FloatToStr(double value) {
  if (std::isnan(value)) return "NAN";
  if (std::isinf(value)) return value > 0 ? "INF" : "-INF";
  if (value == 0) return "0";
  std::string digits;
  int exponent;
  Significant(value, 15, digits, exponent);
  while (digits.size() > 1 && digits.back() == '0')
    digits.pop_back();
  std::string out = value < 0 ? "-" : "";
  if (exponent >= 15 || exponent < -5) {
    out += digits[0];
    if (digits.size() > 1) out.append(".").append(digits, 1);
    return out + "E" + std::to_string(exponent);
  }
  if (exponent < 0)
    return out + "0." + std::string(static_cast<size_t>(-exponent - 1), '0') + digits;
  size_t whole = static_cast<size_t>(exponent) + 1;
  if (digits.size() <= whole) return out + digits + std::string(whole - digits.size(), '0');
  return out + digits.substr(0, whole) + "." + digits.substr(whole);
}

bool TryStrToFloat(std::string_view text, double &value) {
  std::string_view t = TrimView(text);
  // Only [sign] digits [. digits] [e [sign] digits], with a digit somewhere
  // in the mantissa: from_chars alone would also take INF and NAN.
  size_t i = 0;
  if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
  size_t mantissaDigits = 0;
  for (; i < t.size() && IsDigit(t[i]); ++i)
    ++mantissaDigits;
  if (i < t.size() && t[i] == '.')
    for (++i; i < t.size() && IsDigit(t[i]); ++i)
      ++mantissaDigits;
  if (mantissaDigits == 0) return false;
  if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
    ++i;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    size_t expDigits = 0;
    for (; i < t.size() && IsDigit(t[i]); ++i)
      ++expDigits;
    if (expDigits == 0) return false;
  }
  if (i != t.size()) return false;
  std::string_view number = t.front() == '+' ? t.substr(1) : t;
  double v = 0;
  auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), v);
  if (ec != std::errc() || end != number.data() + number.size()) return false;
  value = v;
  return true;
}

double StrToFloat(std::string_view text) {
  double v = 0;
  if (!TryStrToFloat(text, v))
    throw EConvertError(Format(Consts::SInvalidFloat, std::string(text).c_str()));
  return v;
}

namespace {

// One section of a picture format, read once for its placeholders.
struct Picture {
  std::string_view text;
  int intPlaces = 0, minInt = 0; // digit places before the point; those from the first "0"
  int fracPlaces = 0, minFrac = 0;
  bool thousands = false, scientific = false;
};

std::vector<std::string_view> SplitSections(std::string_view format) {
  std::vector<std::string_view> sections;
  size_t start = 0;
  char quote = 0;
  for (size_t i = 0; i < format.size(); ++i) {
    char c = format[i];
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == ';') {
      sections.push_back(format.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(format.substr(start));
  return sections;
}

bool IsExponentAt(std::string_view s, size_t i) {
  return (s[i] == 'E' || s[i] == 'e') && i + 1 < s.size() && (s[i + 1] == '+' || s[i + 1] == '-');
}

Picture ReadPicture(std::string_view text) {
  Picture p{text};
  bool afterPoint = false;
  int firstIntZero = -1, lastFracZero = -1;
  char quote = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (quote) {
      if (c == quote) quote = 0;
      continue;
    }
    if (c == '"' || c == '\'') {
      quote = c;
    } else if (IsExponentAt(text, i)) {
      p.scientific = true;
      break; // the places after the exponent are its own
    } else if (c == '0' || c == '#') {
      if (afterPoint) {
        if (c == '0') lastFracZero = p.fracPlaces;
        ++p.fracPlaces;
      } else {
        if (c == '0' && firstIntZero < 0) firstIntZero = p.intPlaces;
        ++p.intPlaces;
      }
    } else if (c == '.') {
      afterPoint = true;
    } else if (c == ',') {
      p.thousands = true;
    }
  }
  p.minInt = firstIntZero < 0 ? 0 : p.intPlaces - firstIntZero;
  p.minFrac = lastFracZero + 1;
  return p;
}

// Writes the picture with the digits in their places.
class PictureWriter {
public:
  PictureWriter(const Picture &p, std::string intDigits, std::string fracDigits, int exponent,
                bool negativeExponent)
      : p_(p), int_(std::move(intDigits)), frac_(std::move(fracDigits)), exponent_(exponent),
        negativeExponent_(negativeExponent) {}

  std::string Write() {
    std::string_view s = p_.text;
    char quote = 0;
    bool afterPoint = false, pointSeen = false;
    int intSeen = 0, fracSeen = 0;
    for (size_t i = 0; i < s.size(); ++i) {
      char c = s[i];
      if (quote) {
        if (c == quote)
          quote = 0;
        else
          out_ += c;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (IsExponentAt(s, i)) {
        i = WriteExponent(s, i);
      } else if ((c == '0' || c == '#') && !afterPoint) {
        WriteIntPlace(intSeen++);
      } else if ((c == '0' || c == '#') && afterPoint) {
        FlushInt();
        if (fracSeen < static_cast<int>(frac_.size())) out_ += frac_[static_cast<size_t>(fracSeen)];
        ++fracSeen;
      } else if (c == '.') {
        if (!pointSeen) {
          FlushInt();
          if (!frac_.empty()) out_ += '.';
        }
        afterPoint = pointSeen = true;
      } else if (c != ',') {
        out_ += c;
      }
    }
    FlushInt();
    return out_;
  }

private:
  // The first place takes every digit that has no place of its own.
  void WriteIntPlace(int k) {
    int len = static_cast<int>(int_.size());
    int first = k == 0 ? 0 : len - p_.intPlaces + k;
    int last = len - p_.intPlaces + k;
    for (int pos = std::max(first, 0); pos <= last && pos < len; ++pos)
      WriteDigit(pos);
    intWritten_ = true;
  }

  void WriteDigit(int pos) {
    int len = static_cast<int>(int_.size());
    out_ += int_[static_cast<size_t>(pos)];
    int after = len - 1 - pos;
    if (p_.thousands && after > 0 && after % 3 == 0) out_ += ',';
  }

  // Integer digits for a picture with no places before the point.
  void FlushInt() {
    if (intWritten_) return;
    intWritten_ = true;
    for (int pos = 0; pos < static_cast<int>(int_.size()); ++pos)
      WriteDigit(pos);
  }

  size_t WriteExponent(std::string_view s, size_t i) {
    FlushInt();
    out_ += s[i];
    bool plus = s[i + 1] == '+';
    if (negativeExponent_)
      out_ += '-';
    else if (plus)
      out_ += '+';
    size_t j = i + 2;
    int places = 0;
    while (j < s.size() && s[j] == '0' && places < 4) {
      ++places;
      ++j;
    }
    std::string digits = std::to_string(std::abs(exponent_));
    if (static_cast<int>(digits.size()) < places)
      digits.insert(0, static_cast<size_t>(places) - digits.size(), '0');
    out_ += digits;
    return j - 1;
  }

  const Picture &p_;
  std::string int_, frac_;
  int exponent_;
  bool negativeExponent_;
  std::string out_;
  bool intWritten_ = false;
};

void StripFraction(std::string &frac, int minFrac) {
  while (static_cast<int>(frac.size()) > minFrac && frac.back() == '0')
    frac.pop_back();
}

std::string FormatPicture(const Picture &p, double value, bool &allZero) {
  double magnitude = std::fabs(value);
  std::string intDigits, fracDigits;
  int exponent = 0;
  if (p.scientific) {
    int places = std::max(p.intPlaces + p.fracPlaces, 1);
    std::string digits;
    int e10 = 0;
    if (magnitude != 0)
      Significant(magnitude, places, digits, e10);
    else
      digits.assign(static_cast<size_t>(places), '0');
    if (magnitude != 0) exponent = e10 + 1 - p.intPlaces;
    size_t split = std::min(static_cast<size_t>(p.intPlaces), digits.size());
    intDigits = digits.substr(0, split);
    fracDigits = digits.substr(split);
  } else {
    char buf[400];
    std::snprintf(buf, sizeof buf, "%.*f", std::min(p.fracPlaces, 18), magnitude);
    std::string_view all(buf);
    size_t point = all.find('.');
    intDigits = std::string(all.substr(0, point));
    if (point != std::string_view::npos) fracDigits = std::string(all.substr(point + 1));
    if (intDigits == "0") intDigits.clear();
    if (static_cast<int>(intDigits.size()) < p.minInt)
      intDigits.insert(0, static_cast<size_t>(p.minInt) - intDigits.size(), '0');
  }
  allZero = (intDigits + fracDigits).find_first_not_of('0') == std::string::npos;
  StripFraction(fracDigits, p.minFrac);
  return PictureWriter(p, intDigits, fracDigits, exponent, exponent < 0).Write();
}

} // namespace

std::string FormatFloat(std::string_view format, double value) {
  if (format.empty() || !std::isfinite(value)) return FloatToStr(value);
  std::vector<std::string_view> sections = SplitSections(format);
  const bool zeroSection = sections.size() > 2 && !sections[2].empty();
  const bool negativeSection = sections.size() > 1 && !sections[1].empty();
  bool allZero = false;
  if (value == 0 && zeroSection) return FormatPicture(ReadPicture(sections[2]), 0, allZero);
  // A section of its own for negative values shows them without a sign.
  if (value < 0 && negativeSection) return FormatPicture(ReadPicture(sections[1]), value, allZero);
  std::string text = FormatPicture(ReadPicture(sections[0]), value, allZero);
  if (allZero && zeroSection) return FormatPicture(ReadPicture(sections[2]), 0, allZero);
  return value < 0 && !allZero ? "-" + text : text;
}

// ---- Dates and times ----------------------------------------------------------

namespace {

std::string TwoDigits(int n) {
  return std::string{static_cast<char>('0' + n / 10 % 10), static_cast<char>('0' + n % 10)};
}

// Reads 1 to maxDigits digits at t[i].
bool ReadNumber(std::string_view t, size_t &i, size_t maxDigits, int &n) {
  size_t start = i;
  n = 0;
  while (i < t.size() && IsDigit(t[i]) && i - start < maxDigits)
    n = n * 10 + (t[i++] - '0');
  return i > start;
}

bool ParseDate(std::string_view t, TDateTime &date) {
  size_t i = 0;
  int y, m, d;
  if (!ReadNumber(t, i, 4, y) || i >= t.size()) return false;
  char sep = t[i];
  if (sep != '-' && sep != '/') return false;
  ++i;
  if (!ReadNumber(t, i, 2, m) || i >= t.size() || t[i] != sep) return false;
  ++i;
  if (!ReadNumber(t, i, 2, d) || i != t.size()) return false;
  return TryEncodeDate(static_cast<uint16_t>(y), static_cast<uint16_t>(m), static_cast<uint16_t>(d),
                       date);
}

bool ParseTime(std::string_view t, TDateTime &time) {
  size_t i = 0;
  int h, n, s = 0, ms = 0;
  if (!ReadNumber(t, i, 2, h) || i >= t.size() || t[i] != ':') return false;
  ++i;
  if (!ReadNumber(t, i, 2, n)) return false;
  if (i < t.size() && t[i] == ':') {
    ++i;
    if (!ReadNumber(t, i, 2, s)) return false;
    if (i < t.size() && t[i] == '.') {
      ++i;
      size_t start = i;
      if (!ReadNumber(t, i, 3, ms)) return false;
      for (size_t k = i - start; k < 3; ++k)
        ms *= 10;
    }
  }
  if (i != t.size()) return false;
  return TryEncodeTime(static_cast<uint16_t>(h), static_cast<uint16_t>(n), static_cast<uint16_t>(s),
                       static_cast<uint16_t>(ms), time);
}

} // namespace

std::string DateToStr(TDateTime date) {
  uint16_t y, m, d;
  DecodeDate(date, y, m, d);
  return Format("%04u-%02u-%02u", unsigned(y), unsigned(m), unsigned(d));
}

std::string TimeToStr(TDateTime time) {
  uint16_t h, n, s, ms;
  DecodeTime(time, h, n, s, ms);
  return TwoDigits(h) + ":" + TwoDigits(n) + ":" + TwoDigits(s);
}

std::string DateTimeToStr(TDateTime dateTime) {
  std::string text = DateToStr(dateTime);
  if (dateTime != std::trunc(dateTime)) text.append(" ").append(TimeToStr(dateTime));
  return text;
}

bool TryStrToDate(std::string_view text, TDateTime &date) {
  return ParseDate(TrimView(text), date);
}

bool TryStrToTime(std::string_view text, TDateTime &time) {
  return ParseTime(TrimView(text), time);
}

bool TryStrToDateTime(std::string_view text, TDateTime &dateTime) {
  std::string_view t = TrimView(text);
  size_t blank = t.find_first_of(" \t");
  TDateTime date = 0, time = 0;
  if (blank == std::string_view::npos) {
    if (ParseDate(t, date)) {
      dateTime = date;
      return true;
    }
    if (!ParseTime(t, time)) return false;
    dateTime = time;
    return true;
  }
  if (!ParseDate(t.substr(0, blank), date) || !ParseTime(TrimView(t.substr(blank)), time))
    return false;
  dateTime = date >= 0 ? date + time : date - time; // the fraction counts away from day zero
  return true;
}

TDateTime StrToDate(std::string_view text) {
  TDateTime v = 0;
  if (!TryStrToDate(text, v))
    throw EConvertError(Format(Consts::SInvalidDate, std::string(text).c_str()));
  return v;
}

TDateTime StrToTime(std::string_view text) {
  TDateTime v = 0;
  if (!TryStrToTime(text, v))
    throw EConvertError(Format(Consts::SInvalidTime, std::string(text).c_str()));
  return v;
}

TDateTime StrToDateTime(std::string_view text) {
  TDateTime v = 0;
  if (!TryStrToDateTime(text, v))
    throw EConvertError(Format(Consts::SInvalidDateTime, std::string(text).c_str()));
  return v;
}

// ---- Booleans -------------------------------------------------------------------

std::vector<std::string> TrueBoolStrs;
std::vector<std::string> FalseBoolStrs;

namespace {

bool InWords(std::string_view text, const std::vector<std::string> &words, const char *fallback) {
  if (words.empty()) return AnsiSameText(text, fallback);
  for (const std::string &w : words)
    if (AnsiSameText(text, w)) return true;
  return false;
}

} // namespace

bool TryStrToBool(std::string_view text, bool &value) {
  double number;
  if (TryStrToFloat(text, number)) {
    value = number != 0;
    return true;
  }
  if (InWords(text, TrueBoolStrs, "True")) {
    value = true;
    return true;
  }
  if (InWords(text, FalseBoolStrs, "False")) {
    value = false;
    return true;
  }
  return false;
}

bool StrToBool(std::string_view text) {
  bool v = false;
  if (!TryStrToBool(text, v))
    throw EConvertError(Format(Consts::SInvalidBoolean, std::string(text).c_str()));
  return v;
}

std::string BoolToStr(bool value, bool useBoolStrs) {
  if (!useBoolStrs) return value ? "-1" : "0";
  const std::vector<std::string> &words = value ? TrueBoolStrs : FalseBoolStrs;
  return words.empty() ? (value ? "True" : "False") : words.front();
}

} // namespace kestrel
