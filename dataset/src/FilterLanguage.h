// The filter parser's inner routines, shared by the text evaluator and the analysed filter (dataset, unit UnitFilterParser).
#pragma once

#include <string>
#include <string_view>

namespace UnitFilterParser {

/// Space, carriage return, line feed and character 0. Tab is not blank.
inline bool IsBlankChar(char C) { return C == ' ' || C == '\r' || C == '\n' || C == '\0'; }
inline bool IsOperatorChar(char C) { return C == '&' || C == '<' || C == '=' || C == '>' || C == '|'; }
inline bool IsParenChar(char C) { return C == '(' || C == ')'; }

/// Raises EParserError "Paren count off ..." when `Text` holds different numbers of "(" and ")".
void CheckParenCount(std::string_view Text);

/// Splits `Acc` at its first run of operator characters and compares the two sides: the truth
/// text of the result. Raises EParserError for an empty `Acc`.
std::string EvaluateComparison(std::string_view Acc);

/// The comparison of EvaluateComparison once split: Boolean, integer or text by the operands.
bool CompareParts(std::string_view Left, std::string_view Op, std::string_view Right);

/// Whether `Text`, trimmed and upper-cased, is "AND", "OR" or a lone "'": the tokens Encrypter
/// does not copy as they are.
bool IsEncrypterKeyword(std::string_view Text);

}  // namespace UnitFilterParser
