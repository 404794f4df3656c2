// BatchProgress: the progress bar and the list of rejected records of copy and alter (tools layer, private).
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "Commands.h"
#include "ProgressBar.h"
#include "TableBackend.h"

namespace ctt {

/// Draws the progress of a batch on a terminal and lists each rejected record on the console's
/// error stream as "ctt: <command>: record <n> (<record>): <reason>", the way import lists rows.
class BatchProgress : public BatchObserver {
 public:
  /// `goOn`: whether the batch goes on after a rejected record.
  BatchProgress(Console& console, std::string command, bool goOn);

  void Progress(std::uint64_t done, std::uint64_t total) override;
  bool Rejected(std::uint64_t recordNo, const std::string& record, const std::string& reason) override;

  /// Whether any record was rejected.
  bool AnyRejected() const { return FRejected > 0; }
  /// Erases the bar, so that a message can be printed.
  void Clear() { FBar.Clear(); }
  /// Draws the bar's last state and ends its line.
  void Finish() { FBar.Finish(FDone, FDone); }
  /// " in 1.25 s (80,000 records/s)" for `records` since the batch began; empty when there is
  /// nothing to measure.
  std::string Timing(std::uint64_t records) const;

 private:
  Console& FConsole;
  std::string FCommand;
  bool FGoOn;
  ProgressBar FBar;
  std::uint64_t FDone = 0;
  std::uint64_t FRejected = 0;
  std::chrono::steady_clock::time_point FStart;
};

}  // namespace ctt
