// The regular-expression texts in the module's string table.
#include <kestrel/frame/platform/Resources.h>
#include <kestrel/search/URESearch.h>

namespace kestrel {
namespace {

// 65520 ends with one carriage return, so that the fault's text follows on a
// line of its own.
const StringTableRegistration kUREStrings({
    {SUREErrorPrefix, "Error in regular expression: %s\r"},
    {SUREUnexpectedEnd, "Unexpected end of pattern."},
    {SUREClassOpen, "Character class not closed, ']' is missing."},
    {SUREGroupOpen, "Unbalanced group expression, ')' is missing."},
    {SUREBadProperty, "A character property is invalid"},
    {SUREBadRange, "Invalid repeation range."},
    {SURERangeOpen, "Repeation range not closed, '}' is missing."},
    {SUREExpressionEmpty, "Expression is empty."},
    {SURENoOperand, "An expression is missing before '*', '+', '?', '{' or '|', or in an empty "
                    "group at the start."},
    {SURETooLarge, "Expression too large: a repetition bound is too high or the automaton "
                   "would need too many states."},
});

} // namespace
} // namespace kestrel
