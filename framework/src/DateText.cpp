// Dates and times as text: FormatDateTime and the StrToDate/StrToTime parsers.
#include <cctype>
#include <cmath>
#include <vector>

#include "DateTime.h"
#include "Exception.h"
#include "FormatSettings.h"
#include "StringUtils.h"

namespace fw {

namespace {

const char* const kShortDay[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const kLongDay[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char* const kShortMonth[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* const kLongMonth[12] = {"January", "February", "March", "April", "May", "June",
                                    "July", "August", "September", "October", "November", "December"};

std::string Pad(int v, int width) {
  std::string s = std::to_string(v);
  if (static_cast<int>(s.size()) < width) s.insert(0, width - s.size(), '0');
  return s;
}

struct Parts {
  int Year, Month, Day, Hour, Min, Sec, MSec, Dow;
};

void AppendFormatted(std::string& out, std::string_view f, const Parts& p, int depth) {
  bool lastWasHour = false;
  std::size_t i = 0;
  while (i < f.size()) {
    const char c = f[i];
    const char lc = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    std::size_t run = 1;
    while (i + run < f.size() && std::tolower(static_cast<unsigned char>(f[i + run])) == lc) ++run;
    if (c == '\'' || c == '"') {
      const std::size_t end = f.find(c, i + 1);
      out.append(f.substr(i + 1, end == std::string_view::npos ? std::string_view::npos : end - i - 1));
      i = end == std::string_view::npos ? f.size() : end + 1;
      continue;
    }
    if (lc == 'a' && (f.substr(i, 5) == "am/pm" || f.substr(i, 5) == "AM/PM")) {
      out += p.Hour < 12 ? (c == 'a' ? "am" : "AM") : (c == 'a' ? "pm" : "PM");
      i += 5;
      continue;
    }
    switch (lc) {
      case 'c':
        if (depth < 2) {
          AppendFormatted(out, FormatSettings.ShortDateFormat, p, depth + 1);
          if (p.Hour != 0 || p.Min != 0 || p.Sec != 0 || p.MSec != 0) {
            out += ' ';
            AppendFormatted(out, FormatSettings.LongTimeFormat, p, depth + 1);
          }
        }
        run = 1;
        break;
      case 'y':
        out += run <= 2 ? Pad(p.Year % 100, 2) : Pad(p.Year, 4);
        break;
      case 'm':
        if (lastWasHour && run <= 2) out += Pad(p.Min, run);
        else if (run <= 2) out += Pad(p.Month, run);
        else out += run == 3 ? kShortMonth[p.Month - 1] : kLongMonth[p.Month - 1];
        if (run > 4) run = 4;
        break;
      case 'd':
        if (run <= 2) out += Pad(p.Day, run);
        else if (run == 3) out += kShortDay[p.Dow - 1];
        else if (run == 4) out += kLongDay[p.Dow - 1];
        else if (depth < 2) AppendFormatted(out, run == 5 ? FormatSettings.ShortDateFormat : FormatSettings.LongDateFormat, p, depth + 1);
        if (run > 6) run = 6;
        break;
      case 'h': out += Pad(p.Hour, run > 1 ? 2 : 1); run = std::min<std::size_t>(run, 2); break;
      case 'n': out += Pad(p.Min, run > 1 ? 2 : 1); run = std::min<std::size_t>(run, 2); break;
      case 's': out += Pad(p.Sec, run > 1 ? 2 : 1); run = std::min<std::size_t>(run, 2); break;
      case 'z': out += Pad(p.MSec, run >= 3 ? 3 : 1); run = std::min<std::size_t>(run, 3); break;
      case 't':
        if (depth < 2) AppendFormatted(out, run == 1 ? FormatSettings.ShortTimeFormat : FormatSettings.LongTimeFormat, p, depth + 1);
        run = std::min<std::size_t>(run, 2);
        break;
      case '/': out += FormatSettings.DateSeparator; run = 1; break;
      case ':': out += FormatSettings.TimeSeparator; run = 1; break;
      default: out += c; run = 1; break;
    }
    if (lc == 'h') lastWasHour = true;
    else if (std::isalpha(static_cast<unsigned char>(lc))) lastWasHour = false;
    i += run;
  }
}

// Numbers of a date text split on the date separator or '/'; false on anything else.
bool SplitNumbers(std::string_view s, char sep, std::vector<std::string>& out) {
  out.assign(1, std::string());
  for (char c : s) {
    if (c >= '0' && c <= '9') out.back() += c;
    else if (c == sep || c == '/') out.emplace_back();
    else return false;
  }
  for (const std::string& part : out)
    if (part.empty() || part.size() > 4) return false;
  return true;
}

int ExpandYear(int year, std::size_t typedDigits) {
  if (typedDigits > 2) return year;
  int current, m, d;
  DecodeDate(Now(), current, m, d);
  const int window = FormatSettings.TwoDigitYearCenturyWindow;
  if (window <= 0) return current / 100 * 100 + year;
  const int threshold = current - window;
  year += threshold / 100 * 100;
  if (year < threshold) year += 100;
  return year;
}

bool ParseDate(std::string_view text, TDateTime& dt) {
  std::vector<std::string> parts;
  const std::string s = Trim(text);
  if (s.empty() || !SplitNumbers(s, FormatSettings.DateSeparator, parts) || parts.size() < 2 || parts.size() > 3)
    return false;
  // Field order from the short date format: the order in which y, m and d first appear.
  std::string order;
  for (char c : FormatSettings.ShortDateFormat) {
    const char lc = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if ((lc == 'y' || lc == 'm' || lc == 'd') && order.find(lc) == std::string::npos) order += lc;
  }
  if (order.size() != 3) order = "ymd";
  if (parts.size() == 2) order.erase(order.find('y'), 1);
  int y = -1, m = 0, d = 0;
  std::size_t yearDigits = 4;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const int v = std::stoi(parts[i]);
    if (order[i] == 'y') {
      y = v;
      yearDigits = parts[i].size();
    } else if (order[i] == 'm') {
      m = v;
    } else {
      d = v;
    }
  }
  if (y < 0) {
    int mm, dd;
    DecodeDate(Now(), y, mm, dd);
  } else {
    y = ExpandYear(y, yearDigits);
  }
  return TryEncodeDate(y, m, d, dt);
}

bool ParseTime(std::string_view text, TDateTime& dt) {
  std::string s = Trim(text);
  int pm = -1;
  const std::string upper = UpperCase(s);
  if (upper.size() > 2 && (upper.ends_with("AM") || upper.ends_with("PM"))) {
    pm = upper.ends_with("PM") ? 1 : 0;
    s = TrimRight(s.substr(0, s.size() - 2));
  }
  int fields[4] = {0, 0, 0, 0};
  int count = 0;
  std::size_t digits = 0;
  for (std::size_t i = 0; i <= s.size(); ++i) {
    const char c = i < s.size() ? s[i] : '\0';
    if (c >= '0' && c <= '9') {
      if (++digits > 3) return false;
      fields[count] = fields[count] * 10 + (c - '0');
      continue;
    }
    if (digits == 0) return false;
    // The part after the decimal separator is a fraction of a second: "5" is 500 ms, not 5.
    if (count == 3)
      for (; digits < 3; ++digits) fields[3] *= 10;
    digits = 0;
    ++count;
    if (c == '\0') break;
    const bool msSep = count == 3 && c == FormatSettings.DecimalSeparator;
    if (count > 3 || (!msSep && c != FormatSettings.TimeSeparator)) return false;
  }
  if (count < 2) return false;
  int hour = fields[0];
  if (pm >= 0) {
    if (hour < 1 || hour > 12) return false;
    hour = hour % 12 + (pm == 1 ? 12 : 0);
  }
  return TryEncodeTime(hour, fields[1], fields[2], fields[3], dt);
}

}  // namespace

std::string FormatDateTime(std::string_view format, TDateTime dt) {
  Parts p{};
  DecodeDate(dt, p.Year, p.Month, p.Day);
  DecodeTime(dt, p.Hour, p.Min, p.Sec, p.MSec);
  if (p.Month == 0) p.Month = p.Day = 1;
  p.Dow = DayOfWeek(dt);
  std::string out;
  AppendFormatted(out, format.empty() ? std::string_view("c") : format, p, 0);
  return out;
}

std::string DateToStr(TDateTime dt) { return FormatDateTime(FormatSettings.ShortDateFormat, dt); }
std::string TimeToStr(TDateTime dt) { return FormatDateTime(FormatSettings.LongTimeFormat, dt); }
std::string DateTimeToStr(TDateTime dt) { return FormatDateTime("c", dt); }

bool TryStrToDate(std::string_view s, TDateTime& dt) { return ParseDate(s, dt); }
bool TryStrToTime(std::string_view s, TDateTime& dt) { return ParseTime(s, dt); }

bool TryStrToDateTime(std::string_view text, TDateTime& dt) {
  const std::string s = Trim(text);
  const std::size_t blank = s.find(' ');
  if (blank == std::string::npos) return ParseDate(s, dt) || ParseTime(s, dt);
  TDateTime date, time;
  if (!ParseDate(s.substr(0, blank), date) || !ParseTime(s.substr(blank + 1), time)) return false;
  dt = date >= 0 ? date + time : date - time;
  return true;
}

TDateTime StrToDate(std::string_view s) {
  TDateTime dt;
  if (!TryStrToDate(s, dt)) throw EConvertError("'" + std::string(s) + "' is not a valid date");
  return dt;
}

TDateTime StrToTime(std::string_view s) {
  TDateTime dt;
  if (!TryStrToTime(s, dt)) throw EConvertError("'" + std::string(s) + "' is not a valid time");
  return dt;
}

TDateTime StrToDateTime(std::string_view s) {
  TDateTime dt;
  if (!TryStrToDateTime(s, dt)) throw EConvertError("'" + std::string(s) + "' is not a valid date and time");
  return dt;
}

}  // namespace fw
