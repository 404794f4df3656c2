// The tool's copy subcommand: the records of one table moved into another in bulk (tools layer).
#include <ostream>

#include "BatchProgress.h"
#include "Commands.h"
#include "ToolError.h"

namespace ctt {

namespace {

const char* ModeName(CopyMode mode) {
  switch (mode) {
    case CopyMode::Copy: return "copy";
    case CopyMode::Append: return "append";
    case CopyMode::Update: return "update";
    case CopyMode::AppendUpdate: return "append-update";
    case CopyMode::Delete: return "delete";
  }
  return "copy";
}

void PrintSummary(std::ostream& out, const BatchResult& result, const BatchProgress& progress, const TableRef& source,
                  const TableRef& destination, CopyMode mode) {
  out << "records read " << result.Read << ", written " << result.Written << ", rejected " << result.Rejected << " ("
      << ModeName(mode) << " " << source.Display() << " into " << destination.Display() << ")"
      << progress.Timing(result.Written) << '\n';
}

}  // namespace

ExitCode RunCopy(TableBackend& backend, const TableRef& source, const TableRef& destination,
                 const CopyOptions& options, Console& console) {
  // Copying re-creates the destination: its records go, so only on request.
  if (options.Mode == CopyMode::Copy && !options.Replace && TableExists(backend, destination))
    throw UsageError("table " + destination.Display() +
                     " already exists; --replace replaces it and deletes its records, --mode append adds to it");
  BatchProgress progress(console, "copy", !options.StopOnError);
  BatchResult result;
  try {
    backend.CopyTable(source, destination, options.Mode, progress, result);
  } catch (...) {
    progress.Clear();
    const ErrorReport report = DescribeException(std::current_exception());
    // With --stop-on-error the rejected record was listed already: it is the failure raised.
    if (!(options.StopOnError && progress.AnyRejected())) console.Err << "ctt: copy: " << report.Message << '\n';
    if (result.Read > 0 || progress.AnyRejected()) {
      PrintSummary(console.Out, result, progress, source, destination, options.Mode);
      console.Err << "ctt: copy: stopped; the " << result.Written << " records written before are in "
                  << destination.Display() << '\n';
    }
    return progress.AnyRejected() ? kExitRejected : report.Code;
  }
  progress.Finish();
  PrintSummary(console.Out, result, progress, source, destination, options.Mode);
  CheckWritten(console.Out, "standard output");
  return result.Rejected > 0 ? kExitRejected : kExitOk;
}

}  // namespace ctt
