// Condition: an index condition parsed once against the schema and evaluated per record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Schema.h"

namespace cte {

// The language: field names of the schema; numeric literals (123, 4.5) and text literals in
// single or double quotes; arithmetic + - * / % on numbers (+ also joins texts; x / 0 and
// x % 0 give 0); comparisons == = != <> < <= > >= between two numbers or two texts (texts
// compare as unsigned bytes); ! && || on numbers (non-zero is true); parentheses. A field
// reads as a number when its type is an integer, float, date, time or money type, otherwise as
// text: fixed strings without trailing NUL bytes and blanks, other strings without their
// length prefix or terminator.
class Condition {
 public:
  // Parses text. Throws Fail CT_EBADCOND for a syntax error, an unknown field name, a type
  // mismatch or a result that is not a number; RNOT_ERR when the file has no schema.
  static std::shared_ptr<const Condition> Parse(const std::string& text,
                                                const std::vector<FieldDef>& fields);
  // True when the record (n bytes) satisfies the condition. Fields beyond the record read as 0
  // or empty text.
  bool Accepts(const uint8_t* rec, size_t n) const;

  struct Node;
  struct Value {
    bool text = false;
    double num = 0;
    std::string str;
  };

 private:
  Value Eval(int node, const uint8_t* rec, size_t n) const;
  Value Field(int index, const uint8_t* rec, size_t n) const;

  std::vector<FieldDef> fields_;
  std::vector<Node> nodes_;
  int root_ = -1;
};

}  // namespace cte
