// Unit UnitFilterParser: the filter language, evaluated over text for one record (dataset layer).
//
// A filter text is a comparison "Left Op Right" whose operands are literals, the truth texts TRUE
// and FALSE, or parenthesised groups; AND/OR (or "&"/"|") combine truth texts. A group takes at
// most three tokens (left operand, operator, right operand) and the top level ignores what
// follows its first three, so "A = 1 AND B = 2" is decided by "A = 1" alone and a conjunction is
// written "(A = 1) AND (B = 2)". Comparisons are Boolean when the left operand is TRUE or FALSE,
// integer when both operands begin with a digit, and otherwise upper-cased text compared by
// character code. Quotes have no meaning: they are ordinary characters of a literal.
// The routines are pure functions; nothing is cached between calls.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "EParserError.h"

namespace UnitFilterParser {

/// Whether the (already substituted) filter text `Text` is true. Raises EParserError for
/// unbalanced parentheses (before evaluating anything) or a group without operand,
/// EConvertStringError for an unknown operator, and the framework's fw::EConvertError when two
/// digit-led operands are not both integers ("12.5 > 3"). Time and memory are linear in the
/// length of the text, whatever it holds.
bool ParseFilter(std::string_view Text);

/// Puts blanks around "(" and ")" and around runs of operator characters ("&", "<", "=", ">",
/// "|"): "A>=5" becomes "A >= 5". Blanks already present are kept.
std::string Spacer(std::string_view Text);

/// Turns the whole tokens AND and OR (any letter case) into " & " and " | ", drops tokens that are
/// a lone single quote, and joins every other token as " T ", so tokens stand two blanks apart.
std::string Encrypter(std::string_view Text);

/// Reads the token starting at or after `Pos` (0-based) and leaves `Pos` on the space that ends
/// it, or at the end of the text. A token is a run of characters other than space (32), carriage
/// return (13), line feed (10) and character 0; the last three are skipped inside a token and do
/// not end it. Tab is an ordinary character. Returns "" when only blanks remain.
std::string NextToken(std::string_view Text, std::size_t& Pos);

}  // namespace UnitFilterParser
