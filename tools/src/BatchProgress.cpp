// BatchProgress: the progress bar and the list of rejected records of copy and alter (tools layer).
#include "BatchProgress.h"

#include <cstdio>
#include <ostream>

namespace ctt {

BatchProgress::BatchProgress(Console& console, std::string command, bool goOn)
    : FConsole(console), FCommand(std::move(command)), FGoOn(goOn), FBar(console.Err, console.ErrIsTerminal, 0),
      FStart(std::chrono::steady_clock::now()) {}

void BatchProgress::Progress(std::uint64_t done, std::uint64_t total) {
  FDone = done;
  // The total is known only once the source is open.
  FBar.SetTotal(total);
  FBar.Update(done, done);
}

bool BatchProgress::Rejected(std::uint64_t recordNo, const std::string& record, const std::string& reason) {
  ++FRejected;
  FBar.Clear();
  FConsole.Err << "ctt: " << FCommand << ": record " << recordNo;
  if (!record.empty()) FConsole.Err << " (" << record << ")";
  FConsole.Err << ": " << reason << '\n';
  return FGoOn;
}

std::string BatchProgress::Timing(std::uint64_t records) const {
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - FStart).count();
  if (seconds <= 0 || records == 0) return std::string();
  char elapsed[32];
  std::snprintf(elapsed, sizeof elapsed, "%.2f", seconds);
  return std::string(" in ") + elapsed + " s (" + ProgressBar::Grouped(static_cast<std::uint64_t>(records / seconds)) +
         " records/s)";
}

}  // namespace ctt
