// TMask: the host's wildcard test of one name.
//
//   *        any run of characters, also none, dots included
//   ?        exactly one character
//   [abc]    one of the characters of the set; a-z gives a range
//   [!abc]   one character that is not in the set
//   other    the character itself
// Letters compare without regard to case. A dot has no special meaning:
// "*.*" asks for a name with a dot in it.
//
// A bad mask raises EMaskException when the mask is made: a set without its
// closing "]", an empty set ("[]", "[!]"), a range with no start ("[-a]"), no
// end ("[a-]") or an end below its start ("[z-a]").
#pragma once

#include <string>
#include <string_view>

#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/Wildcards.h>

namespace kestrel {

// A compiled mask; the constructor raises EMaskException for a bad one.
class TMask : public TObject {
public:
  explicit TMask(std::string_view mask);
  // Whether the whole name matches the mask.
  bool Matches(std::string_view name) const;

private:
  WildcardPattern FPattern;
};

// The host's one-call form.
bool MatchesMask(std::string_view name, std::string_view mask);

} // namespace kestrel
