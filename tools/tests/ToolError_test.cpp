// Tests of error reporting: the system's message and number, and the exit code of each failure.
#include "ToolError.h"

#include <gtest/gtest.h>

#include "CsvReader.h"
#include "CtError.h"

namespace ctt {
namespace {

ErrorReport Report(const std::function<void()>& f) {
  try {
    f();
  } catch (...) {
    return DescribeException(std::current_exception());
  }
  return {"(no error)", kExitOk};
}

TEST(ToolError, StorageErrorsShowTheSystemsMessageAndNumber) {
  const ErrorReport duplicate = Report([] { CTDbIntf::CtError(2); });
  EXPECT_EQ(duplicate.Message, "Key value already exists (error 2)");
  EXPECT_EQ(duplicate.Code, kExitStorage);
  const ErrorReport missing = Report([] { CTDbIntf::CtError(12); });
  EXPECT_EQ(missing.Message, "Could not open file: not there or locked (error 12)");
  EXPECT_EQ(missing.Code, kExitNotFound);
  const ErrorReport formatted = Report([] { CTDbIntf::CtErrorFmt(1120, {}); });
  EXPECT_EQ(formatted.Message, "No table name specified (error 1120)");
  EXPECT_EQ(Report([] { CTDbIntf::CtError(9999); }).Message, "storage error (error 9999)");
  EXPECT_EQ(DescribeErrorNumber(2), "Key value already exists (error 2)");
}

TEST(ToolError, EachKindOfFailureHasItsExitCode) {
  EXPECT_EQ(Report([] { throw UsageError("bad"); }).Code, kExitUsage);
  EXPECT_EQ(Report([] { throw ToolError(kExitUnavailable, "later"); }).Code, kExitUnavailable);
  EXPECT_EQ(Report([] { throw CsvError("line 3: broken", 3, false); }).Code, kExitFile);
  EXPECT_EQ(Report([] { throw fw::EConvertError("'x' is not a valid integer value"); }).Code, kExitUsage);
  EXPECT_EQ(Report([] { throw fw::EDatabaseError("Field 'x' not found"); }).Code, kExitStorage);
  const ErrorReport internal = Report([] { throw std::logic_error("oops"); });
  EXPECT_EQ(internal.Code, kExitInternal);
  EXPECT_EQ(internal.Message, "oops");
  EXPECT_STREQ(ExitCodeName(kExitRejected), "rows rejected");
  EXPECT_STREQ(ExitCodeName(42), "unknown");
}

}  // namespace
}  // namespace ctt
