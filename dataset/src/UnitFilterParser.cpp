// The filter language evaluated over text: normalising, tokenising and comparing (dataset, unit UnitFilterParser).
#include "UnitFilterParser.h"

#include <cctype>
#include <string>
#include <vector>

#include "FilterLanguage.h"
#include "StringUtils.h"

namespace UnitFilterParser {

namespace {

constexpr std::string_view kTrue = "TRUE";
constexpr std::string_view kFalse = "FALSE";

// The framework's Trim without copying: characters up to the space are dropped at both ends.
std::string_view TrimView(std::string_view s) {
  while (!s.empty() && static_cast<unsigned char>(s.front()) <= ' ') s.remove_prefix(1);
  while (!s.empty() && static_cast<unsigned char>(s.back()) <= ' ') s.remove_suffix(1);
  return s;
}

char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// Whether `s` upper-cased (ASCII letters) equals `upper`.
bool UpperEquals(std::string_view s, std::string_view upper) {
  if (s.size() != upper.size()) return false;
  for (std::size_t i = 0; i < s.size(); ++i)
    if (AsciiUpper(s[i]) != upper[i]) return false;
  return true;
}

bool IsTrueText(std::string_view Text) { return UpperEquals(TrimView(Text), kTrue); }

bool IsDigitLed(std::string_view Text) {
  const std::string_view t = TrimView(Text);
  return !t.empty() && t.front() >= '0' && t.front() <= '9';
}

[[noreturn]] void UnknownOperator(std::string_view Op) {
  throw EConvertStringError("Unknown operator " + std::string(Op));
}

// The six orderings shared by every comparison kind; `order` is <0, 0 or >0. False when `Op` is
// not one of them.
bool Ordered(std::string_view Op, int order, bool& result) {
  if (Op == "=") result = order == 0;
  else if (Op == ">") result = order > 0;
  else if (Op == "<") result = order < 0;
  else if (Op == ">=") result = order >= 0;
  else if (Op == "<=") result = order <= 0;
  else if (Op == "<>") result = order != 0;
  else return false;
  return true;
}

bool CompareBooleans(std::string_view Left, std::string_view Op, std::string_view Right) {
  // Op holds only operator characters: trimming and upper-casing leave it as it is.
  const std::string_view right = TrimView(Right);
  if (Op.empty() && right.empty()) return IsTrueText(Left);  // a lone truth text is itself
  const bool a = IsTrueText(Left);
  const bool b = IsTrueText(right);
  bool result = false;
  if (Ordered(Op, static_cast<int>(a) - static_cast<int>(b), result)) return result;
  if (Op == "&") return a && b;
  if (Op == "|") return a || b;
  UnknownOperator(Op);
}

bool CompareIntegers(std::string_view Left, std::string_view Op, std::string_view Right) {
  // Both sides are converted before the operator is looked at, as the conversion error comes first.
  const int32_t a = fw::StrToInt(Left);
  const int32_t b = fw::StrToInt(Right);
  bool result = false;
  if (!Ordered(Op, a < b ? -1 : (a > b ? 1 : 0), result)) UnknownOperator(Op);
  return result;
}

// Upper-cased with the locale's case mapping, then compared by character code, a proper prefix
// first: the order of fw::AnsiUpperCase(Left) against fw::AnsiUpperCase(Right), without copies.
int CompareUpper(std::string_view Left, std::string_view Right) {
  const std::size_t n = std::min(Left.size(), Right.size());
  for (std::size_t i = 0; i < n; ++i) {
    const int a = std::toupper(static_cast<unsigned char>(Left[i])) & 0xFF;
    const int b = std::toupper(static_cast<unsigned char>(Right[i])) & 0xFF;
    if (a != b) return a < b ? -1 : 1;
  }
  return Left.size() < Right.size() ? -1 : (Left.size() > Right.size() ? 1 : 0);
}

bool CompareStrings(std::string_view Left, std::string_view Op, std::string_view Right) {
  bool result = false;
  if (!Ordered(Op, CompareUpper(Left, Right), result)) UnknownOperator(Op);
  return result;
}

std::string_view BoolToText(bool B) { return B ? kTrue : kFalse; }

// One open group of EvaluateGroup: its operand text and the number of tokens counted into it.
struct Group {
  std::string Acc;
  int Count = 0;
  bool Opened = false;
};

// A token read by a group: counted into its text unless empty or a parenthesis.
void Take(Group& group, std::string_view token) {
  if (token.empty() || token.front() == '(' || token.front() == ')') return;
  ++group.Count;
  group.Acc += token;
}

// Evaluates the group at `Pos` of an Encrypter result. Nested groups are kept on an explicit
// stack rather than by recursion, so that deeply nested text cannot exhaust the thread's stack;
// the order of reading and evaluating is that of the recursive description:
//   a group that opens with "(" skips it; it reads tokens while text is left, it has fewer than
//   three, and (when opened) the character after the position is not ")"; a token starting with
//   "(" steps back onto it and is replaced by the nested group's truth text; an opened group
//   that ends before the end of the text skips two further characters.
std::string EvaluateGroup(std::string_view Text, std::size_t& Pos) {
  std::vector<Group> stack;
  auto open = [&]() {
    Group group;
    group.Opened = Pos < Text.size() && Text[Pos] == '(';
    if (group.Opened) ++Pos;
    stack.push_back(std::move(group));
  };
  open();
  for (;;) {
    Group& top = stack.back();
    const bool closing = top.Opened && Pos + 1 < Text.size() && Text[Pos + 1] == ')';
    if (Pos < Text.size() && top.Count < 3 && !closing) {
      const std::string token = NextToken(Text, Pos);
      if (!token.empty() && token.front() == '(') {
        --Pos;
        open();
      } else {
        Take(top, token);
      }
      continue;
    }
    if (top.Opened && Pos < Text.size()) Pos += 2;
    const std::string result = EvaluateComparison(top.Acc);
    stack.pop_back();
    if (stack.empty()) return result;
    Take(stack.back(), result);
  }
}

}  // namespace

void CheckParenCount(std::string_view Text) {
  std::size_t open = 0, close = 0;
  for (char c : Text) {
    if (c == '(') ++open;
    else if (c == ')') ++close;
  }
  if (open != close)
    throw EParserError("Paren count off \r\nFound " + std::to_string(open) + " (\r\nFound " + std::to_string(close) +
                       " )");
}

bool IsEncrypterKeyword(std::string_view Text) {
  const std::string_view t = TrimView(Text);
  return UpperEquals(t, "AND") || UpperEquals(t, "OR") || t == "'";
}

std::string Spacer(std::string_view Text) {
  std::string out;
  out.reserve(Text.size() * 2);
  for (std::size_t i = 0; i < Text.size(); ++i) {
    const char c = Text[i];
    if (IsParenChar(c)) {
      out += ' ';
      out += c;
      out += ' ';
    } else if (!IsOperatorChar(c)) {
      out += c;
    } else if (i + 1 < Text.size() && IsOperatorChar(Text[i + 1])) {
      out += ' ';  // the operator goes on: no blank after it
      out += c;
    } else if (i > 0 && IsOperatorChar(Text[i - 1])) {
      out += c;
      out += ' ';
    } else {
      out += ' ';
      out += c;
      out += ' ';
    }
  }
  return out;
}

std::string NextToken(std::string_view Text, std::size_t& Pos) {
  std::string result;
  while (Pos < Text.size()) {
    const char c = Text[Pos];
    if (c == ' ' && !result.empty()) break;
    // Carriage return, line feed and character 0 are dropped, even inside a token.
    if (!IsBlankChar(c)) result += c;
    ++Pos;
  }
  return result;
}

std::string Encrypter(std::string_view Text) {
  std::string out;
  out.reserve(Text.size() + 8);
  std::size_t pos = 0;
  while (pos < Text.size()) {
    const std::string token = NextToken(Text, pos);
    const std::string_view t = TrimView(token);
    if (UpperEquals(t, "AND")) {
      out += " & ";
    } else if (UpperEquals(t, "OR")) {
      out += " | ";
    } else if (t != "'") {
      out += ' ';
      out += token;
      out += ' ';
    }
  }
  return out;
}

bool CompareParts(std::string_view Left, std::string_view Op, std::string_view Right) {
  const std::string_view left = TrimView(Left);
  if (UpperEquals(left, kTrue) || UpperEquals(left, kFalse)) return CompareBooleans(Left, Op, Right);
  // A side with no character is not digit-led: a lone "5" is compared as text (and has no
  // operator, which is reported as such).
  if (IsDigitLed(Left) && IsDigitLed(Right)) return CompareIntegers(Left, Op, Right);
  return CompareStrings(Left, Op, Right);
}

std::string EvaluateComparison(std::string_view Acc) {
  // A group without any operand ("()", a text of blanks) has nothing to compare.
  if (Acc.empty()) throw EParserError("Filter expression has an empty group: nothing to compare");
  std::size_t op = 0;
  while (op < Acc.size() && !IsOperatorChar(Acc[op])) ++op;
  std::size_t right = op;
  while (right < Acc.size() && IsOperatorChar(Acc[right])) ++right;
  return std::string(BoolToText(CompareParts(Acc.substr(0, op), Acc.substr(op, right - op), Acc.substr(right))));
}

bool ParseFilter(std::string_view Text) {
  CheckParenCount(Text);
  const std::string s = Encrypter(Spacer(Text));
  std::size_t pos = 0;
  return EvaluateGroup(s, pos) == kTrue;
}

}  // namespace UnitFilterParser
