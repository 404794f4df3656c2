// Tests of the field and index definition syntax: what parses, and the errors for what does not.
#include <gtest/gtest.h>

#include "ConnectionOptions.h"
#include "FieldDefinition.h"
#include "IndexDefinition.h"
#include "ToolError.h"

namespace ctt {
namespace {

std::string UsageMessage(const std::function<void()>& f) {
  try {
    f();
  } catch (const UsageError& e) {
    return e.what();
  }
  return "(no error)";
}

TEST(FieldDefinition, ParsesTypesSizesAndBcdPrecision) {
  const auto entries = ParseFieldDefinitions({"id:integer, name:String:40", "amount:bcd:12.2,rate:bcd:4,photo:blob"});
  ASSERT_EQ(entries.size(), 5u);
  EXPECT_EQ(entries[0].DataType, fw::ftInteger);
  EXPECT_EQ(entries[1].Name, "name");
  EXPECT_EQ(entries[1].DataType, fw::ftString);
  EXPECT_EQ(entries[1].Size, 40);
  EXPECT_EQ(entries[2].Precision, 12);
  EXPECT_EQ(entries[2].Size, 2);
  EXPECT_EQ(entries[3].Precision, 0);
  EXPECT_EQ(entries[3].Size, 4);
  EXPECT_EQ(entries[4].Size, 0);
  EXPECT_EQ(ParseFieldDefinition("b:bool").DataType, fw::ftBoolean);
}

TEST(FieldDefinition, FormatReadsBack) {
  for (const char* text : {"a:string:40", "a:bcd:12.2", "a:bcd:3", "a:integer", "a:varbytes:9", "a:memo"}) {
    const FieldDefinition entry = ParseFieldDefinition(text);
    EXPECT_EQ("a:" + FormatFieldDefinition(entry), text);
  }
  EXPECT_EQ(FieldTypeName(fw::ftGuid), "type#35");
  EXPECT_EQ(FieldTypeName(fw::ftLargeint), "largeint");
  EXPECT_FALSE(FieldTypeFromName("largeint").has_value()) << "shown, but not offered by create";
  EXPECT_EQ(FieldTypeName(fw::ftAutoInc), "autoinc");
  EXPECT_FALSE(FieldTypeFromName("autoinc").has_value()) << "a plain integer underneath: not offered";
}

TEST(FieldDefinition, ErrorsNameTheDefinitionAndTheProblem) {
  EXPECT_EQ(UsageMessage([] { ParseFieldDefinition("name"); }),
            "field definition 'name': expected name:type or name:type:size");
  EXPECT_EQ(UsageMessage([] { ParseFieldDefinition("1st:integer"); }),
            "field definition '1st:integer': the name must start with a letter or '_' and hold only letters, "
            "digits and '_'");
  EXPECT_NE(UsageMessage([] { ParseFieldDefinition("x:strng:4"); })
                .find("unknown type 'strng' (did you mean 'string'?) (known: string,"),
            std::string::npos);
  EXPECT_NE(UsageMessage([] { ParseFieldDefinition("x:xyzzy"); }).find("unknown type 'xyzzy' (known: string,"),
            std::string::npos);
  EXPECT_EQ(UsageMessage([] { ParseFieldDefinition("x:string"); }),
            "field definition 'x:string': type string needs a size (1 to 65535)");
  EXPECT_EQ(UsageMessage([] { ParseFieldDefinition("x:integer:4"); }),
            "field definition 'x:integer:4': type integer takes no size");
  for (const char* bad : {"x:string:0", "x:string:65536", "x:string:4x", "x:bytes:-1"})
    EXPECT_NE(UsageMessage([bad] { ParseFieldDefinition(bad); }).find("from 1 to 65535"), std::string::npos) << bad;
  EXPECT_NE(UsageMessage([] { ParseFieldDefinition("x:bcd:4.6"); }).find("precision"), std::string::npos);
  EXPECT_NE(UsageMessage([] { ParseFieldDefinition("x:bcd:33"); }).find("scale"), std::string::npos);
  EXPECT_EQ(UsageMessage([] { ParseFieldDefinitions({"a:integer,A:string:3"}); }), "field 'A' is defined twice");
  EXPECT_EQ(UsageMessage([] { ParseFieldDefinitions({"a:integer,"}); }),
            "field definition '': expected name:type or name:type:size");
}

TEST(IndexDefinition, ParsesFieldsAndOptions) {
  const IndexDefinition byName = ParseIndexDefinition("byname:last+first:nocase,DESC");
  EXPECT_EQ(byName.Name, "byname");
  EXPECT_EQ(byName.Fields, (std::vector<std::string>{"last", "first"}));
  EXPECT_EQ(byName.FieldsText(), "last;first");
  EXPECT_TRUE(byName.CaseInsensitive);
  EXPECT_TRUE(byName.Descending);
  EXPECT_FALSE(byName.Unique);
  EXPECT_EQ(byName.OptionsText(), "desc,nocase");
  EXPECT_TRUE(byName.Options().Contains(fw::ixCaseInsensitive));

  const IndexDefinition primary = ParseIndexDefinition("pk:id:primary");
  EXPECT_TRUE(primary.Unique);
  EXPECT_EQ(primary.OptionsText(), "primary");
  EXPECT_TRUE(primary.Options().Contains(fw::ixUnique));
  EXPECT_EQ(ParseIndexDefinition("k:a;b").OptionsText(), "");
}

TEST(IndexDefinition, ErrorsNameTheDefinitionAndTheProblem) {
  EXPECT_EQ(UsageMessage([] { ParseIndexDefinition("k"); }), "index definition 'k': expected name:fields or name:fields:options");
  EXPECT_EQ(UsageMessage([] { ParseIndexDefinition("k:a;;b"); }), "index definition 'k:a;;b': a key field name is empty");
  EXPECT_EQ(UsageMessage([] { ParseIndexDefinition("k:a+A"); }), "index definition 'k:a+A': field 'A' is in the key twice");
  EXPECT_EQ(UsageMessage([] { ParseIndexDefinition("k:a:unique,sorted"); }),
            "index definition 'k:a:unique,sorted': unknown option 'sorted' (known: unique, primary, desc, nocase)");
  EXPECT_EQ(UsageMessage([] { ParseIndexDefinitions({"k:a", "K:b"}); }), "index 'K' is defined twice");

  const auto fields = ParseFieldDefinitions({"id:integer,photo:blob"});
  EXPECT_EQ(UsageMessage([&] { CheckIndexFields(ParseIndexDefinition("k:id;nope"), fields); }),
            "index 'k': 'nope' is not a field of the table");
  EXPECT_EQ(UsageMessage([&] { CheckIndexFields(ParseIndexDefinition("k:phto"), fields); }),
            "index 'k': 'phto' is not a field of the table (did you mean 'photo'?)");
  EXPECT_EQ(UsageMessage([&] { CheckIndexFields(ParseIndexDefinition("k:photo"), fields); }),
            "index 'k': field 'photo' is a blob and cannot be a key");
  EXPECT_EQ(UsageMessage([&] { CheckIndexFields(ParseIndexDefinition("k:ID"), fields); }), "(no error)");
}

TEST(ConnectionOptions, AlignmentNames) {
  EXPECT_EQ(ParseAlignment("byte"), CTDbIntf::laByte);
  EXPECT_EQ(ParseAlignment("laDWord"), CTDbIntf::laDWord);
  EXPECT_EQ(ParseAlignment("BYTECLI"), CTDbIntf::laByteCli);
  EXPECT_NE(UsageMessage([] { ParseAlignment("la"); }).find("unknown alignment 'la'"), std::string::npos);
}

}  // namespace
}  // namespace ctt
