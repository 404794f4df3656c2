// TFormatSettings: separators and date/time formats used by the text conversions (framework layer).
#pragma once

#include <string>

namespace fw {

/// Separators and formats read by the number and date text routines. The process-wide
/// `FormatSettings` starts with the defaults below (fixed, not taken from the system locale, so
/// that text round-trips the same on every machine); an application may change it at start-up.
/// It is not synchronised: change it before other threads use the routines.
///
/// Date format letters: `d`/`dd` day, `m`/`mm` month, `yy`/`yyyy` year, `h`/`hh` hour, `n`/`nn`
/// minute, `s`/`ss` second, `z`/`zzz` milliseconds; `/` stands for `DateSeparator` and `:` for
/// `TimeSeparator`; text in quotes is copied.
struct TFormatSettings {
  char DecimalSeparator = '.';
  char ThousandSeparator = ',';
  char DateSeparator = '-';
  char TimeSeparator = ':';
  /// Default dates print as 2000-01-31.
  std::string ShortDateFormat = "yyyy/mm/dd";
  std::string LongDateFormat = "yyyy/mm/dd";
  std::string ShortTimeFormat = "hh:nn";
  /// Default times print as 13:05:09.
  std::string LongTimeFormat = "hh:nn:ss";
  /// Two-digit years are placed in the century window ending this many years after today
  /// (the framework's sliding window); 0 means "current century".
  int TwoDigitYearCenturyWindow = 50;
};

extern TFormatSettings FormatSettings;

}  // namespace fw
