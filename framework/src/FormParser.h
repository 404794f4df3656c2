// The text form file as a tree: objects, properties and values, parsed before anything is created.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fw {

/// One property value of a form file.
struct FormValue {
  enum Kind : uint8_t { vkInteger, vkFloat, vkString, vkIdent, vkSet, vkList, vkCollection, vkBinary };
  Kind ValueKind = vkInteger;
  int Line = 0;
  int64_t Int = 0;
  double Float = 0;
  char FloatSuffix = 0;            // 's', 'd', 'c' or 0
  std::string Text;                // String, Ident (possibly dotted), Binary bytes
  std::vector<std::string> Names;  // Set members
  std::vector<FormValue> Items;    // List elements
  struct Item;
  std::vector<Item> CollectionItems;
};

/// "Name = value"; Name may be dotted ("Sub.Prop").
struct FormProperty {
  std::string Name;
  FormValue Value;
  int Line = 0;
};

struct FormValue::Item {
  std::vector<FormProperty> Properties;
  int Line = 0;
};

/// "object Name: TClass [n] ... end" with its properties and nested objects in file order.
struct FormObject {
  std::string Keyword;  // "object", "inherited" or "inline", lower case
  std::string Name;     // may be empty
  std::string ClassName;
  int Line = 0;
  std::vector<FormProperty> Properties;
  std::vector<FormObject> Children;
};

/// Parses a whole form text. Raises EParserError "Line N: <what is wrong>" on malformed text
/// (unterminated object, string or list, missing "=", bad number, text after the final "end").
FormObject ParseForm(std::string_view text);

}  // namespace fw
