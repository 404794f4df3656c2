// ProgressBar: drawn only on a terminal, throttled so that drawing never slows an import.
#include "ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ctt {

namespace {
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
constexpr int kBarWidth = 30;
}  // namespace

ProgressBar::ProgressBar(std::ostream& out, bool isTerminal, std::uint64_t total)
    : FOut(out), FTerminal(isTerminal), FTotal(total), FStart(std::chrono::steady_clock::now()),
      FLastDraw(FStart) {}

bool ProgressBar::IsTerminal(int fd) { return ::isatty(fd) == 1; }

std::string ProgressBar::Grouped(std::uint64_t value) {
  std::string digits = std::to_string(value);
  std::string out;
  const std::size_t n = digits.size();
  for (std::size_t i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

std::string ProgressBar::Render(double fraction, std::uint64_t rows, double rate, int width, double eta) {
  std::string out;
  if (fraction >= 0) {
    fraction = std::clamp(fraction, 0.0, 1.0);
    const int filled = static_cast<int>(std::floor(fraction * width));
    out += '[';
    out.append(static_cast<std::size_t>(filled), '#');
    out.append(static_cast<std::size_t>(width - filled), ' ');
    out += ']';
    char percent[8];
    std::snprintf(percent, sizeof percent, "%4d%%", static_cast<int>(std::floor(fraction * 100)));
    out += percent;
    out += "  ";
  }
  out += Grouped(rows) + " rows";
  if (rate > 0) out += "  " + Grouped(static_cast<std::uint64_t>(std::llround(rate))) + " rows/s";
  if (eta >= 0) {
    const auto total = static_cast<std::uint64_t>(std::llround(eta));
    char text[32];
    if (total >= 3600)
      std::snprintf(text, sizeof text, "  ETA %llu:%02llu:%02llu", static_cast<unsigned long long>(total / 3600),
                    static_cast<unsigned long long>(total / 60 % 60), static_cast<unsigned long long>(total % 60));
    else
      std::snprintf(text, sizeof text, "  ETA %llu:%02llu", static_cast<unsigned long long>(total / 60),
                    static_cast<unsigned long long>(total % 60));
    out += text;
  }
  return out;
}

void ProgressBar::Draw(std::uint64_t done, std::uint64_t rows) {
  const auto now = std::chrono::steady_clock::now();
  const double seconds = std::chrono::duration<double>(now - FStart).count();
  const double fraction = FTotal > 0 ? static_cast<double>(done) / static_cast<double>(FTotal) : -1.0;
  const double rate = seconds > 0.2 ? static_cast<double>(rows) / seconds : 0.0;
  // The time to go, once a second and a little of the work have given a steady rate.
  const double eta = fraction > 0.01 && seconds > 1.0 ? seconds * (1.0 - fraction) / fraction : -1.0;
  // "\x1b[K" clears what a longer earlier line left behind.
  FOut << '\r' << Render(fraction, rows, rate, kBarWidth, eta) << "\x1b[K" << std::flush;
  FLastDraw = now;
  FDrawn = true;
}

void ProgressBar::Update(std::uint64_t done, std::uint64_t rows) {
  if (!FTerminal) return;
  if (std::chrono::steady_clock::now() - FLastDraw < kRedrawInterval) return;
  Draw(done, rows);
}

void ProgressBar::Clear() {
  if (!FTerminal || !FDrawn) return;
  FOut << "\r\x1b[K" << std::flush;
  FDrawn = false;
}

void ProgressBar::Finish(std::uint64_t done, std::uint64_t rows) {
  if (!FTerminal || !FDrawn) return;
  Draw(done, rows);
  FOut << '\n' << std::flush;
}

}  // namespace ctt
