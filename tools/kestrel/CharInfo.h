// What `kestrel char` shows for one code point, as a list of fields that
// separate sources add: each field source registers itself with a rank, and
// the command shows the fields of all sources in rank order. A new source
// (case forms, decomposition, combining class, block...) is one more file
// with a static CharFieldRegistration; nothing else changes.
#pragma once

#include <string>
#include <vector>

#include <kestrel/frame/host/Types.h>

namespace kestrel::cli {

struct CharField {
  std::string key;  // JSON key, and the label of the readable form
  std::string text; // readable form; an empty text is left out of the line
  std::string json; // a JSON value (string, number, array, object or null)
};

using CharFieldSource = void (*)(UCS4 code, std::vector<CharField> &fields);

// Ranks used so far: 10 categories and properties, 50 number, 90 tests.
struct CharFieldRegistration {
  CharFieldRegistration(int rank, CharFieldSource source);
};

// The fields of every registered source for one code point.
std::vector<CharField> CharFieldsOf(UCS4 code);

// Helpers for sources.
std::string JsonStringArray(const std::vector<std::string> &items);
std::string JoinWords(const std::vector<std::string> &items);

} // namespace kestrel::cli
