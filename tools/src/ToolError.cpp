// Failures turned into one readable line and an exit code (tools layer).
#include "ToolError.h"

#include <cstdlib>
#include <ios>
#include <ostream>

#include "CsvReader.h"
#include "CtMessages.h"
#include "ECtreeException.h"
#include "LibraryLoader.h"
#include "Exception.h"
#include "StringUtils.h"
#include "UnitFilterParser.h"

namespace ctt {

namespace {
constexpr std::int32_t kFileNotFound = 12;
}  // namespace

const char* ExitCodeName(int code) {
  switch (code) {
    case kExitOk: return "success";
    case kExitInternal: return "internal error";
    case kExitUsage: return "usage error";
    case kExitFile: return "file or CSV error";
    case kExitStorage: return "storage error";
    case kExitNotFound: return "table not found";
    case kExitRejected: return "rows rejected";
    case kExitUnavailable: return "not available";
    case kExitInterrupted: return "interrupted";
    case kExitTerminated: return "terminated";
    default: return "unknown";
  }
}

std::string DescribeErrorNumber(std::int32_t code) {
  const auto text = CTDbIntf::CtMessage(CTDbIntf::kMessageBase + code);
  std::string out = text && !text->empty() ? std::string(*text) : std::string("storage error");
  return out + " (error " + std::to_string(code) + ")";
}

void CheckWritten(std::ostream& out, const std::string& what) {
  out.flush();
  if (!out) throw ToolError(kExitFile, "cannot write " + what);
}

ErrorReport DescribeException(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const CTDbIntf::ECtreeException& e) {
    // CtError appends "\n\rCtree Error #n"; the number is shown in the tool's own way instead.
    std::string message = e.Message();
    const std::size_t suffix = message.find("\n\rCtree Error #");
    if (suffix != std::string::npos) message.erase(suffix);
    const ExitCode code = e.ErrorCode == kFileNotFound ? kExitNotFound : kExitStorage;
    // The engine library did not load: add what the platform loader said and where it looked.
    if (e.ErrorCode == 0 && !CTDbIntf::LastLoaderMessage().empty()) {
      const char* path = std::getenv("LD_LIBRARY_PATH");
      message += " (the loader said: " + CTDbIntf::LastLoaderMessage() +
                 "; it searched the library folder ctt was built or installed with, LD_LIBRARY_PATH" +
                 (path != nullptr ? std::string(" = ") + path : std::string(" (not set)")) +
                 " and the system's library folders)";
      return {message, kExitStorage};
    }
    if (message.empty() && e.ErrorCode != 0) return {DescribeErrorNumber(e.ErrorCode), code};
    if (e.ErrorCode != 0) message += " (error " + std::to_string(e.ErrorCode) + ")";
    return {message, code};
  } catch (const UnitFilterParser::EParserError& e) {
    // The paren-count message spans three lines; the tool reports on one.
    const std::string lines = fw::StringReplace(e.Message(), " \r\n", "\r\n", true);
    return {"bad filter: " + fw::StringReplace(lines, "\r\n", "; ", true), kExitUsage};
  } catch (const ToolError& e) {
    return {e.what(), e.Code};
  } catch (const CsvError& e) {
    return {e.what(), kExitFile};
  } catch (const std::ios_base::failure& e) {
    return {e.what(), kExitFile};
  } catch (const fw::EConvertError& e) {
    return {e.Message(), kExitUsage};
  } catch (const fw::EVariantError& e) {
    return {e.Message(), kExitUsage};
  } catch (const fw::Exception& e) {
    return {e.Message(), kExitStorage};
  } catch (const std::exception& e) {
    return {e.what(), kExitInternal};
  } catch (...) {
    return {"unknown failure", kExitInternal};
  }
}

}  // namespace ctt
