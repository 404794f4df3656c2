// Fuzz target of the filter parser: any text evaluates or raises one of the parser's exceptions,
// and the analysed filter answers as the text evaluator does.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "FilterProgram.h"
#include "UnitFilterParser.h"

namespace {

// A result, or the class and message of the exception; any other exception escapes and stops
// the fuzzer.
template <class F>
std::string Outcome(F&& evaluate) {
  try {
    return evaluate() ? "true" : "false";
  } catch (const UnitFilterParser::EConvertStringError& e) {
    return "EConvertStringError: " + e.Message();
  } catch (const UnitFilterParser::EParserError& e) {
    return "EParserError: " + e.Message();
  } catch (const fw::EConvertError& e) {
    return "EConvertError: " + e.Message();
  }
}

}  // namespace

// The input is a filter text, optionally followed by field values, each after a byte 1.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  Outcome([&] { return UnitFilterParser::ParseFilter(input); });

  const std::size_t split = input.find('\1');
  const std::string_view filter = input.substr(0, split);
  std::vector<std::string> given;
  for (std::size_t at = split; at != std::string_view::npos;) {
    const std::size_t next = input.find('\1', at + 1);
    given.emplace_back(input.substr(at + 1, next == std::string_view::npos ? next : next - at - 1));
    at = next;
  }
  CTTables::FilterProgram program(filter);
  std::vector<std::string> values;
  for (std::size_t i = 0; i < program.FieldNames().size(); ++i) values.push_back(i < given.size() ? given[i] : "'x'");
  const std::string text = program.Substitute(values);
  if (Outcome([&] { return program.Evaluate(values); }) != Outcome([&] { return UnitFilterParser::ParseFilter(text); }))
    std::abort();
  return 0;
}
