// ProgressBar: a one-line progress display for long imports on a terminal (tools layer).
#pragma once

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>

namespace ctt {

/// Redraws one line on a terminal ("\r" then the bar) at most ten times a second. When the
/// output is not a terminal it draws nothing at all, and the caller prints a plain summary.
class ProgressBar {
 public:
  /// `out` is not owned and must outlive the bar. `total` is the amount of work (bytes of the
  /// input), 0 when unknown (a pipe): then only the count and the rate are shown.
  ProgressBar(std::ostream& out, bool isTerminal, std::uint64_t total);

  /// Sets the amount of work, for work whose size is known only once it has begun.
  void SetTotal(std::uint64_t total) { FTotal = total; }
  /// Reports `done` units of work and `rows` rows handled; redraws when due.
  void Update(std::uint64_t done, std::uint64_t rows);
  /// Erases the bar so that another line can be printed; the next Update draws it again.
  void Clear();
  /// Draws the final state and ends the line (nothing when not a terminal or never drawn).
  void Finish(std::uint64_t done, std::uint64_t rows);

  /// The text of the bar for a fraction in 0..1 (negative when unknown), a row count, a rate in
  /// rows per second and the seconds still to go (negative when unknown), in `width` characters
  /// of bar: "[#########           ]  45%  450,000 rows  112,000 rows/s  ETA 0:05".
  static std::string Render(double fraction, std::uint64_t rows, double rate, int width, double eta = -1);
  /// `value` with "," between groups of three digits.
  static std::string Grouped(std::uint64_t value);

  /// Whether the stream behind file descriptor `fd` is a terminal.
  static bool IsTerminal(int fd);

 private:
  void Draw(std::uint64_t done, std::uint64_t rows);

  std::ostream& FOut;
  bool FTerminal;
  std::uint64_t FTotal;
  std::chrono::steady_clock::time_point FStart;
  std::chrono::steady_clock::time_point FLastDraw;
  bool FDrawn = false;
};

}  // namespace ctt
