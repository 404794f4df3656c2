// The tool's import subcommand: CSV rows appended in batches, bad rows reported (tools layer).
#include <signal.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>

#include "BlobColumns.h"
#include "Commands.h"
#include "CsvReader.h"
#include "ECtreeException.h"
#include "FormatSettings.h"
#include "ProgressBar.h"
#include "StringUtils.h"
#include "ToolError.h"

namespace ctt {

namespace {

// For each CSV column, the position of its field in the table.
std::vector<std::size_t> MapHeader(const std::vector<std::string>& header, const TableInfo& info) {
  std::vector<std::size_t> map;
  for (std::size_t c = 0; c < header.size(); ++c) {
    const std::string& name = header[c];
    std::size_t i = 0;
    while (i < info.Fields.size() && !fw::SameText(info.Fields[i].Name, name)) ++i;
    if (i == info.Fields.size()) {
      std::string known;
      for (const FieldDefinition& f : info.Fields) known += (known.empty() ? "" : ", ") + f.Name;
      throw ToolError(kExitFile, "CSV column " + std::to_string(c + 1) + " '" + name +
                                     "' is not a field of the table (fields: " + known + ")");
    }
    for (std::size_t earlier = 0; earlier < c; ++earlier)
      if (map[earlier] == i) throw ToolError(kExitFile, "CSV column '" + name + "' appears twice in the header");
    map.push_back(i);
  }
  return map;
}

// Makes the framework read dates in the order and with the separator of a format such as
// "dd.mm.yyyy" for the life of the import, and puts the settings back afterwards.
class DateFormatScope {
 public:
  explicit DateFormatScope(const std::string& format) : FSaved(fw::FormatSettings) {
    if (format.empty()) return;
    std::string order;
    char separator = 0;
    for (char c : format) {
      const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (lower == 'd' || lower == 'm' || lower == 'y') {
        if (order.empty() || order.back() != lower) order += lower;
      } else if (separator == 0 || separator == c) {
        separator = c;
      } else {
        separator = '\n';  // two different separators
      }
    }
    if (order.size() != 3 || order.find('d') == std::string::npos || order.find('m') == std::string::npos ||
        order.find('y') == std::string::npos || separator == 0 || separator == '\n' || separator == '"')
      throw UsageError("--date-format '" + format + "': give the day, month and year once each with one separator, "
                       "e.g. dd.mm.yyyy or mm/dd/yyyy");
    std::string framework;
    for (char part : order) framework += std::string(part == 'y' ? "yyyy" : part == 'm' ? "mm" : "dd") + "/";
    framework.pop_back();
    fw::FormatSettings.ShortDateFormat = framework;
    fw::FormatSettings.DateSeparator = separator;
  }
  ~DateFormatScope() { fw::FormatSettings = FSaved; }
  DateFormatScope(const DateFormatScope&) = delete;
  DateFormatScope& operator=(const DateFormatScope&) = delete;

 private:
  fw::TFormatSettings FSaved;
};

// One import run: the counters, the open batch and the way rows are reported.
class Importer {
 public:
  Importer(TableCursor& cursor, const ImportOptions& options, Console& console, ProgressBar& bar)
      : FCursor(cursor), FOptions(options), FConsole(console), FBar(bar), FBatches(cursor.HasTransactions()) {}

  std::uint64_t Read = 0;       // data rows read (skipped ones included)
  std::uint64_t Skipped = 0;
  std::uint64_t Added = 0;      // added and committed or still in the open batch
  std::uint64_t Rejected = 0;
  std::uint64_t Present = 0;    // rows whose key was already in the table (SkipExisting)
  std::uint64_t Committed = 0;  // data rows read up to the end of the last committed batch

  void Reject(std::int64_t line, const std::string& reason) {
    ++Rejected;
    FBar.Clear();
    FConsole.Err << "ctt: import: line " << line << ": " << reason << '\n';
  }

  void Add(const std::vector<std::optional<std::string>>& values, std::int64_t line) {
    if (!FBatches) {
      // Without transactions each record is durable once added.
      try {
        FCursor.Append(values, FOptions.Spellings);
        ++Added;
        Committed = Read;
      } catch (...) {
        Refused(line, std::current_exception());
      }
      return;
    }
    if (!FInBatch) {
      FCursor.StartTransaction();
      FInBatch = true;
      FBatchAdded = 0;
      FBatchRows = 0;
      FBatchLine = line;
    }
    ++FBatchRows;
    try {
      FCursor.Append(values, FOptions.Spellings);
      ++FBatchAdded;
    } catch (...) {
      Refused(line, std::current_exception());
    }
  }

  // Counts a row in the open batch without adding it (a row rejected before reaching the table).
  void Count() {
    if (FInBatch) ++FBatchRows;
  }

  bool BatchFull() const { return FInBatch && FOptions.BatchSize > 0 && FBatchRows >= FOptions.BatchSize; }

  // Commits the open batch. On failure the batch is rolled back and the failure raised.
  void CommitBatch() {
    if (!FInBatch) return;
    FInBatch = false;
    try {
      FCursor.Commit();
    } catch (...) {
      FailedLine = FBatchLine;
      RollBackQuietly();
      throw;
    }
    Added += FBatchAdded;
    Committed = Read;
  }

  // Rolls back the open batch (its rows are no longer added).
  void RollBackBatch() {
    if (!FInBatch) return;
    FInBatch = false;
    FailedLine = FBatchLine;
    RollBackQuietly();
  }

  std::int64_t FailedLine = 0;

 private:
  // A row the table refused: already there (a duplicate key with SkipExisting) or rejected.
  void Refused(std::int64_t line, std::exception_ptr error) {
    if (FOptions.SkipExisting) {
      try {
        std::rethrow_exception(error);
      } catch (const CTDbIntf::ECtreeException& e) {
        if (e.ErrorCode == kDuplicateKey) {
          ++Present;
          return;
        }
      } catch (...) {
      }
    }
    Reject(line, DescribeException(error).Message);
  }

  static constexpr std::int32_t kDuplicateKey = 2;

  void RollBackQuietly() {
    try {
      FCursor.Rollback();
    } catch (...) {
      FBar.Clear();
      FConsole.Err << "ctt: import: rollback failed: " << DescribeException(std::current_exception()).Message << '\n';
    }
  }

  TableCursor& FCursor;
  const ImportOptions& FOptions;
  Console& FConsole;
  ProgressBar& FBar;
  bool FBatches;
  bool FInBatch = false;
  std::uint64_t FBatchAdded = 0;
  std::uint64_t FBatchRows = 0;
  std::int64_t FBatchLine = 0;
};

void PrintSummary(Console& console, const Importer& run, double seconds, const std::string& table) {
  std::ostream& out = console.Out;
  out << "rows read " << run.Read << ", added " << run.Added << ", rejected " << run.Rejected;
  if (run.Skipped > 0) out << ", skipped " << run.Skipped;
  if (run.Present > 0) out << ", already there " << run.Present;
  out << " into " << table;
  if (seconds > 0 && run.Added > 0) {
    char elapsed[32];
    std::snprintf(elapsed, sizeof elapsed, "%.2f", seconds);
    out << " in " << elapsed << " s (" << ProgressBar::Grouped(static_cast<std::uint64_t>(run.Added / seconds))
        << " rows/s)";
  }
  out << '\n';
}

// The signal that asked the import to stop (0: none). Set by the handler, read between rows.
volatile std::sig_atomic_t gStopSignal = 0;

extern "C" void NoteStopSignal(int signal) { gStopSignal = signal; }

// Catches SIGINT and SIGTERM while it lives, so that an interrupted import ends like a failed
// batch: rolled back, with the resume point printed. The previous handlers come back after it.
class StopSignals {
 public:
  StopSignals() {
    gStopSignal = 0;
    struct sigaction action {};
    action.sa_handler = NoteStopSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &FOldInt);
    sigaction(SIGTERM, &action, &FOldTerm);
  }
  ~StopSignals() {
    sigaction(SIGINT, &FOldInt, nullptr);
    sigaction(SIGTERM, &FOldTerm, nullptr);
  }
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // Raises the stop as a failure when a signal has come.
  static void Check() {
    const int signal = gStopSignal;
    if (signal == 0) return;
    throw ToolError(signal == SIGINT ? kExitInterrupted : kExitTerminated,
                    std::string("stopped by ") + (signal == SIGINT ? "SIGINT" : "SIGTERM"));
  }

 private:
  struct sigaction FOldInt {};
  struct sigaction FOldTerm {};
};

}  // namespace

ExitCode RunImport(TableBackend& backend, const TableRef& table, const ImportOptions& options, Console& console) {
  const DateFormatScope dates(options.DateFormat);
  const bool fromStdin = options.File.empty() || options.File == "-";
  std::ifstream file;
  std::uint64_t total = 0;
  if (!fromStdin) {
    file.open(options.File, std::ios::binary | std::ios::ate);
    if (!file) throw ToolError(kExitFile, "cannot read " + options.File + ": " + std::strerror(errno));
    total = static_cast<std::uint64_t>(file.tellg());
    file.seekg(0);
  }
  std::istream& input = fromStdin ? std::cin : file;
  CsvReader reader(input, options.Separator);
  std::vector<std::string> record;
  if (!reader.Next(record)) throw ToolError(kExitFile, "the CSV input is empty: a header row naming the fields is needed");
  const std::vector<std::string> header = record;

  if (!options.Fields.empty()) CreateTable(backend, table, {options.Fields, options.Indexes, options.Replace});
  std::unique_ptr<TableCursor> cursor = backend.Open(table, OpenMode::ReadWrite);
  const TableInfo info = cursor->Info();
  const std::vector<std::size_t> columns = MapHeader(header, info);
  if (options.SkipExisting &&
      std::none_of(info.Indexes.begin(), info.Indexes.end(), [](const IndexDefinition& i) { return i.Unique || i.Primary; }))
    throw UsageError("--skip-existing needs a unique index on " + table.Display() +
                     ": without one a row already there cannot be told from a new one");

  ProgressBar bar(console.Err, console.ErrIsTerminal, total);
  Importer run(*cursor, options, console, bar);
  const auto start = std::chrono::steady_clock::now();
  auto seconds = [&start] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  std::vector<std::optional<std::string>> values(info.Fields.size());
  ExitCode result = kExitOk;
  std::string stopReason;
  const StopSignals signals;
  try {
    for (;;) {
      StopSignals::Check();
      bool more;
      try {
        more = reader.Next(record);
      } catch (const CsvError& e) {
        if (!e.Resumable) throw;
        ++run.Read;
        if (run.Read <= options.SkipRows) {
          ++run.Skipped;
          continue;
        }
        run.Count();
        run.Reject(e.Line, std::string(e.what()).substr(std::string(e.what()).find(": ") + 2));
        if (options.StopOnError) break;
        continue;
      }
      if (!more) break;
      ++run.Read;
      if (run.Read <= options.SkipRows) {
        ++run.Skipped;
        continue;
      }
      if (record.size() != header.size()) {
        run.Count();
        run.Reject(reader.RecordLine(), "the row has " + std::to_string(record.size()) + " fields, the header " +
                                            std::to_string(header.size()));
        if (options.StopOnError) break;
      } else {
        for (auto& v : values) v.reset();
        for (std::size_t c = 0; c < columns.size(); ++c) values[columns[c]] = std::move(record[c]);
        const std::uint64_t rejectedBefore = run.Rejected;
        if (const std::optional<std::string> bad = DecodeBinaryColumns(info.Fields, values)) {
          run.Count();
          run.Reject(reader.RecordLine(), *bad);
        } else {
          run.Add(values, reader.RecordLine());
        }
        if (options.StopOnError && run.Rejected > rejectedBefore) break;
      }
      StopSignals::Check();
      if (run.BatchFull()) run.CommitBatch();
      bar.Update(reader.BytesRead(), run.Read);
    }
    StopSignals::Check();
    if (options.StopOnError && run.Rejected > 0) {
      run.RollBackBatch();
      stopReason = "stopped at the first rejected row";
      if (run.FailedLine > 0)
        stopReason += "; the batch from line " + std::to_string(run.FailedLine) + " on was rolled back";
      result = kExitRejected;
    } else {
      run.CommitBatch();
      if (run.Rejected > 0) result = kExitRejected;
    }
  } catch (...) {
    bar.Clear();
    // A batch still open (the input broke off) is rolled back: its rows may be complete, but the
    // resume point below must be exact.
    run.RollBackBatch();
    const ErrorReport report = DescribeException(std::current_exception());
    console.Err << "ctt: import: " << report.Message << '\n';
    PrintSummary(console, run, seconds(), table.Display());
    console.Err << "ctt: import: the first " << run.Committed << " data rows are in the table; rerun with --skip-rows "
                << run.Committed << " to resume after fixing the problem\n";
    return report.Code;
  }
  bar.Finish(reader.BytesRead(), run.Read);
  if (!stopReason.empty()) {
    console.Err << "ctt: import: " << stopReason << '\n';
    PrintSummary(console, run, seconds(), table.Display());
    console.Err << "ctt: import: the first " << run.Committed << " data rows are in the table; rerun with --skip-rows "
                << run.Committed << " to resume after fixing the problem\n";
    return result;
  }
  PrintSummary(console, run, seconds(), table.Display());
  return result;
}

}  // namespace ctt
