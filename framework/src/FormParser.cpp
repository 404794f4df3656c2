// Tokenizer and recursive-descent parser of the text form format.
#include "FormParser.h"

#include <cmath>
#include <cstdlib>

#include "Exception.h"
#include "StringUtils.h"

namespace fw {

namespace {

struct Token {
  enum Kind : uint8_t { tkEnd, tkIdent, tkInteger, tkFloat, tkString, tkSymbol };
  Kind TokenKind = tkEnd;
  std::string Text;  // identifier, string contents, or the symbol character
  int64_t Int = 0;
  double Float = 0;
  char Suffix = 0;
  int Line = 1;
};

bool IsIdentStart(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Objects, lists and collections nest by recursion; a limit far beyond any real form keeps a
// damaged or hostile text from exhausting the stack.
constexpr int kMaxNesting = 200;

class Parser {
 public:
  explicit Parser(std::string_view text) : FText(text) { Advance(); }

  FormObject Parse() {
    FormObject root = ParseObject();
    if (FTok.TokenKind != Token::tkEnd) Fail(FTok.Line, "unexpected text after the final 'end'");
    return root;
  }

 private:
  [[noreturn]] void Fail(int line, const std::string& what) {
    throw EParserError("Line " + std::to_string(line) + ": " + what);
  }

  // One level of nesting while it lives; raises at the line where the limit is passed.
  class Nesting {
   public:
    Nesting(Parser& parser, int line) : FParser(parser) {
      if (FParser.FDepth == kMaxNesting)
        FParser.Fail(line, "nesting deeper than " + std::to_string(kMaxNesting) + " levels");
      ++FParser.FDepth;
    }
    ~Nesting() { --FParser.FDepth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Parser& FParser;
  };

  std::string Describe(const Token& t) {
    switch (t.TokenKind) {
      case Token::tkEnd: return "end of file";
      case Token::tkIdent: return "'" + t.Text + "'";
      case Token::tkString: return "a string";
      case Token::tkSymbol: return "'" + t.Text + "'";
      default: return "a number";
    }
  }

  void SkipBlanks() {
    while (FPos < FText.size() && static_cast<unsigned char>(FText[FPos]) <= ' ') {
      if (FText[FPos] == '\n') ++FLine;
      ++FPos;
    }
  }

  void Advance() {
    SkipBlanks();
    FTok = Token{};
    FTok.Line = FLine;
    if (FPos >= FText.size()) return;
    const char c = FText[FPos];
    if (IsIdentStart(c)) {
      const std::size_t start = FPos;
      while (FPos < FText.size() && (IsIdentStart(FText[FPos]) || IsDigit(FText[FPos]) || FText[FPos] == '.')) ++FPos;
      FTok.TokenKind = Token::tkIdent;
      FTok.Text = std::string(FText.substr(start, FPos - start));
      if (FTok.Text.back() == '.' || FTok.Text.find("..") != std::string::npos)
        Fail(FLine, "malformed name '" + FTok.Text + "'");
    } else if (IsDigit(c) || c == '$' || ((c == '-' || c == '+') && FPos + 1 < FText.size() &&
                                          (IsDigit(FText[FPos + 1]) || FText[FPos + 1] == '$'))) {
      LexNumber();
    } else if (c == '\'' || c == '#') {
      LexString();
    } else {
      FTok.TokenKind = Token::tkSymbol;
      FTok.Text = std::string(1, c);
      ++FPos;
    }
  }

  void LexNumber() {
    const std::size_t start = FPos;
    bool neg = false;
    if (FText[FPos] == '-' || FText[FPos] == '+') neg = FText[FPos++] == '-';
    if (FText[FPos] == '$') {
      ++FPos;
      const std::size_t digits = FPos;
      while (FPos < FText.size() && std::isxdigit(static_cast<unsigned char>(FText[FPos]))) ++FPos;
      if (FPos == digits || FPos - digits > 16) Fail(FLine, "bad hexadecimal number");
      const uint64_t v = std::strtoull(std::string(FText.substr(digits, FPos - digits)).c_str(), nullptr, 16);
      FTok.TokenKind = Token::tkInteger;
      FTok.Int = neg ? static_cast<int64_t>(0 - v) : static_cast<int64_t>(v);
    } else {
      bool isFloat = false;
      while (FPos < FText.size() && IsDigit(FText[FPos])) ++FPos;
      if (FPos < FText.size() && FText[FPos] == '.') {
        isFloat = true;
        ++FPos;
        while (FPos < FText.size() && IsDigit(FText[FPos])) ++FPos;
      }
      if (FPos < FText.size() && (FText[FPos] == 'e' || FText[FPos] == 'E')) {
        isFloat = true;
        ++FPos;
        if (FPos < FText.size() && (FText[FPos] == '+' || FText[FPos] == '-')) ++FPos;
        if (FPos >= FText.size() || !IsDigit(FText[FPos])) Fail(FLine, "bad number exponent");
        while (FPos < FText.size() && IsDigit(FText[FPos])) ++FPos;
      }
      const std::string text(FText.substr(start, FPos - start));
      if (FPos < FText.size() && (FText[FPos] == 's' || FText[FPos] == 'd' || FText[FPos] == 'c' ||
                                  FText[FPos] == 'S' || FText[FPos] == 'D' || FText[FPos] == 'C')) {
        isFloat = true;
        FTok.Suffix = static_cast<char>(FText[FPos++] | 0x20);
      }
      if (FPos < FText.size() && (IsIdentStart(FText[FPos]) || IsDigit(FText[FPos])))
        Fail(FLine, "bad number '" + text + FText[FPos] + "'");
      if (isFloat) {
        FTok.TokenKind = Token::tkFloat;
        FTok.Float = std::strtod(text.c_str(), nullptr);
        if (!std::isfinite(FTok.Float)) Fail(FLine, "number out of range '" + text + "'");
      } else {
        FTok.TokenKind = Token::tkInteger;
        if (!TryStrToInt64(text, FTok.Int)) Fail(FLine, "integer out of range '" + text + "'");
      }
    }
  }

  // A run of adjacent 'quoted' and #nnn pieces.
  void LexString() {
    FTok.TokenKind = Token::tkString;
    while (FPos < FText.size() && (FText[FPos] == '\'' || FText[FPos] == '#')) {
      if (FText[FPos] == '#') {
        ++FPos;
        const std::size_t digits = FPos;
        while (FPos < FText.size() && IsDigit(FText[FPos])) ++FPos;
        if (FPos == digits) Fail(FLine, "'#' must be followed by a character code");
        const long code = std::strtol(std::string(FText.substr(digits, FPos - digits)).c_str(), nullptr, 10);
        if (code > 255 || FPos - digits > 3) Fail(FLine, "character code out of range");
        FTok.Text += static_cast<char>(code);
        continue;
      }
      ++FPos;
      while (true) {
        if (FPos >= FText.size() || FText[FPos] == '\n' || FText[FPos] == '\r')
          Fail(FTok.Line, "unterminated string");
        if (FText[FPos] == '\'') {
          if (FPos + 1 < FText.size() && FText[FPos + 1] == '\'') {
            FTok.Text += '\'';
            FPos += 2;
            continue;
          }
          ++FPos;
          break;
        }
        FTok.Text += FText[FPos++];
      }
    }
  }

  bool IsKeyword(const char* word) const { return FTok.TokenKind == Token::tkIdent && SameText(FTok.Text, word); }
  bool IsSymbol(char c) const { return FTok.TokenKind == Token::tkSymbol && FTok.Text[0] == c; }

  void Expect(char c) {
    if (!IsSymbol(c)) Fail(FTok.Line, std::string("'") + c + "' expected but " + Describe(FTok) + " found");
    Advance();
  }

  std::string ExpectIdent(const char* what) {
    if (FTok.TokenKind != Token::tkIdent) Fail(FTok.Line, std::string(what) + " expected but " + Describe(FTok) + " found");
    std::string s = FTok.Text;
    Advance();
    return s;
  }

  FormObject ParseObject() {
    const Nesting level(*this, FTok.Line);
    FormObject obj;
    obj.Line = FTok.Line;
    if (!(IsKeyword("object") || IsKeyword("inherited") || IsKeyword("inline")))
      Fail(FTok.Line, "'object' expected but " + Describe(FTok) + " found");
    obj.Keyword = LowerCase(FTok.Text);
    Advance();
    std::string first = ExpectIdent("class name");
    if (IsSymbol(':')) {
      Advance();
      obj.Name = first;
      obj.ClassName = ExpectIdent("class name");
    } else {
      obj.ClassName = first;
    }
    if (IsSymbol('[')) {
      Advance();
      if (FTok.TokenKind != Token::tkInteger) Fail(FTok.Line, "child order number expected");
      Advance();
      Expect(']');
    }
    while (!IsKeyword("end")) {
      if (FTok.TokenKind == Token::tkEnd) Fail(obj.Line, "object '" + obj.Name + "' is not terminated by 'end'");
      if (IsKeyword("object") || IsKeyword("inherited") || IsKeyword("inline")) {
        obj.Children.push_back(ParseObject());
      } else {
        obj.Properties.push_back(ParseProperty());
      }
    }
    Advance();
    return obj;
  }

  FormProperty ParseProperty() {
    FormProperty p;
    p.Line = FTok.Line;
    p.Name = ExpectIdent("property name");
    Expect('=');
    p.Value = ParseValue();
    return p;
  }

  FormValue ParseValue() {
    FormValue v;
    v.Line = FTok.Line;
    switch (FTok.TokenKind) {
      case Token::tkInteger:
        v.ValueKind = FormValue::vkInteger;
        v.Int = FTok.Int;
        Advance();
        return v;
      case Token::tkFloat:
        v.ValueKind = FormValue::vkFloat;
        v.Float = FTok.Float;
        v.FloatSuffix = FTok.Suffix;
        Advance();
        return v;
      case Token::tkString:
        v.ValueKind = FormValue::vkString;
        v.Text = FTok.Text;
        Advance();
        while (IsSymbol('+')) {
          Advance();
          if (FTok.TokenKind != Token::tkString) Fail(FTok.Line, "string expected after '+'");
          v.Text += FTok.Text;
          Advance();
        }
        return v;
      case Token::tkIdent:
        v.ValueKind = FormValue::vkIdent;
        v.Text = FTok.Text;
        Advance();
        return v;
      case Token::tkEnd:
        Fail(FTok.Line, "value expected but end of file found");
      default:
        break;
    }
    const Nesting level(*this, FTok.Line);
    const char c = FTok.Text[0];
    if (c == '[') return ParseSet(v);
    if (c == '(') return ParseList(v);
    if (c == '<') return ParseCollection(v);
    if (c == '{') return ParseBinary(v);
    Fail(FTok.Line, "value expected but " + Describe(FTok) + " found");
  }

  FormValue ParseSet(FormValue& v) {
    v.ValueKind = FormValue::vkSet;
    Advance();
    if (IsSymbol(']')) {
      Advance();
      return v;
    }
    while (true) {
      v.Names.push_back(ExpectIdent("set member"));
      if (IsSymbol(']')) break;
      if (FTok.TokenKind == Token::tkEnd) Fail(v.Line, "unterminated set");
      Expect(',');
    }
    Advance();
    return v;
  }

  FormValue ParseList(FormValue& v) {
    v.ValueKind = FormValue::vkList;
    Advance();
    while (!IsSymbol(')')) {
      if (FTok.TokenKind == Token::tkEnd) Fail(v.Line, "unterminated list");
      v.Items.push_back(ParseValue());
    }
    Advance();
    return v;
  }

  FormValue ParseCollection(FormValue& v) {
    v.ValueKind = FormValue::vkCollection;
    Advance();
    while (!IsSymbol('>')) {
      if (!IsKeyword("item")) Fail(FTok.Line, "'item' expected but " + Describe(FTok) + " found");
      FormValue::Item item;
      item.Line = FTok.Line;
      Advance();
      while (!IsKeyword("end")) {
        if (FTok.TokenKind == Token::tkEnd) Fail(item.Line, "collection item is not terminated by 'end'");
        item.Properties.push_back(ParseProperty());
      }
      Advance();
      v.CollectionItems.push_back(std::move(item));
    }
    Advance();
    return v;
  }

  // Reads hex digits straight from the text up to '}' (line breaks allowed).
  FormValue ParseBinary(FormValue& v) {
    v.ValueKind = FormValue::vkBinary;
    std::string hex;
    while (true) {
      if (FPos >= FText.size()) Fail(v.Line, "unterminated binary value");
      const char c = FText[FPos++];
      if (c == '}') break;
      if (c == '\n') ++FLine;
      if (static_cast<unsigned char>(c) <= ' ') continue;
      if (!std::isxdigit(static_cast<unsigned char>(c))) Fail(FLine, "bad character in binary value");
      hex += c;
    }
    if (hex.size() % 2 != 0) Fail(v.Line, "odd number of hex digits in binary value");
    for (std::size_t i = 0; i < hex.size(); i += 2)
      v.Text += static_cast<char>(std::strtol(hex.substr(i, 2).c_str(), nullptr, 16));
    Advance();
    return v;
  }

  std::string_view FText;
  std::size_t FPos = 0;
  int FLine = 1;
  int FDepth = 0;
  Token FTok;
};

}  // namespace

FormObject ParseForm(std::string_view text) { return Parser(text).Parse(); }

}  // namespace fw
