// Case mapping, comparison, trimming, file names and the current directory.
#include "StringUtils.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Exception.h"

namespace fw {

namespace {

char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
char LocaleUpper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }
char LocaleLower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

template <class F>
std::string Map(std::string_view s, F f) {
  std::string out(s);
  std::transform(out.begin(), out.end(), out.begin(), f);
  return out;
}

int Sign(int v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }

// strcoll needs zero-terminated text; embedded zeros end the comparison as in the framework.
int Collate(std::string_view a, std::string_view b) {
  return Sign(std::strcoll(std::string(a).c_str(), std::string(b).c_str()));
}

}  // namespace

std::string UpperCase(std::string_view s) { return Map(s, AsciiUpper); }
std::string LowerCase(std::string_view s) { return Map(s, AsciiLower); }

int CompareStr(std::string_view a, std::string_view b) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const int d = static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]);
    if (d != 0) return d;
  }
  return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

int CompareText(std::string_view a, std::string_view b) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const int d = static_cast<unsigned char>(AsciiUpper(a[i])) - static_cast<unsigned char>(AsciiUpper(b[i]));
    if (d != 0) return d;
  }
  return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

bool SameText(std::string_view a, std::string_view b) { return a.size() == b.size() && CompareText(a, b) == 0; }

std::string AnsiUpperCase(std::string_view s) { return Map(s, LocaleUpper); }
std::string AnsiLowerCase(std::string_view s) { return Map(s, LocaleLower); }
int AnsiCompareStr(std::string_view a, std::string_view b) { return Collate(a, b); }
int AnsiCompareText(std::string_view a, std::string_view b) { return Collate(AnsiUpperCase(a), AnsiUpperCase(b)); }
bool AnsiSameText(std::string_view a, std::string_view b) { return AnsiCompareText(a, b) == 0; }

int AnsiStrLComp(std::string_view a, std::string_view b, std::size_t maxLen) {
  return Collate(a.substr(0, maxLen), b.substr(0, maxLen));
}

int AnsiStrLIComp(std::string_view a, std::string_view b, std::size_t maxLen) {
  return AnsiCompareText(a.substr(0, maxLen), b.substr(0, maxLen));
}

std::string TrimLeft(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size() && static_cast<unsigned char>(s[i]) <= ' ') ++i;
  return std::string(s.substr(i));
}

std::string TrimRight(std::string_view s) {
  std::size_t n = s.size();
  while (n > 0 && static_cast<unsigned char>(s[n - 1]) <= ' ') --n;
  return std::string(s.substr(0, n));
}

std::string Trim(std::string_view s) { return TrimLeft(TrimRight(s)); }

std::string QuotedStr(std::string_view s) {
  std::string out = "'";
  for (char c : s) {
    out += c;
    if (c == '\'') out += '\'';
  }
  return out + "'";
}

std::string StringReplace(std::string_view s, std::string_view from, std::string_view to, bool all,
                          bool ignoreCase) {
  if (from.empty()) return std::string(s);
  const std::string hay = ignoreCase ? UpperCase(s) : std::string(s);
  const std::string needle = ignoreCase ? UpperCase(from) : std::string(from);
  std::string out;
  std::size_t pos = 0;
  while (true) {
    const std::size_t hit = hay.find(needle, pos);
    if (hit == std::string::npos) break;
    out.append(s.substr(pos, hit - pos)).append(to);
    pos = hit + from.size();
    if (!all) break;
  }
  return out.append(s.substr(pos));
}

std::string ExtractFileName(std::string_view path) {
  const std::size_t slash = path.rfind(PathDelim);
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string ExtractFilePath(std::string_view path) {
  const std::size_t slash = path.rfind(PathDelim);
  return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash + 1));
}

std::string ExtractFileDir(std::string_view path) {
  std::string dir = ExtractFilePath(path);
  if (dir.size() > 1) dir.pop_back();
  return dir;
}

std::string ExtractFileExt(std::string_view path) {
  const std::size_t slash = path.rfind(PathDelim);
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) return "";
  return std::string(path.substr(dot));
}

std::string ChangeFileExt(std::string_view path, std::string_view ext) {
  const std::size_t slash = path.rfind(PathDelim);
  std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) dot = path.size();
  return std::string(path.substr(0, dot)).append(ext);
}

std::string IncludeTrailingPathDelimiter(std::string_view path) {
  std::string out(path);
  if (out.empty() || out.back() != PathDelim) out += PathDelim;
  return out;
}

std::string ExcludeTrailingPathDelimiter(std::string_view path) {
  std::string out(path);
  if (out.size() > 1 && out.back() == PathDelim) out.pop_back();
  return out;
}

bool FileExists(std::string_view path) {
  struct stat st;
  return ::stat(std::string(path).c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

bool DirectoryExists(std::string_view path) {
  struct stat st;
  return ::stat(std::string(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool DeleteFile(std::string_view path) { return std::remove(std::string(path).c_str()) == 0; }

std::string GetCurrentDir() {
  std::string buf(256, '\0');
  while (::getcwd(buf.data(), buf.size()) == nullptr) {
    if (errno != ERANGE) throw EInOutError(std::string("Cannot read the current directory: ") + std::strerror(errno), errno);
    buf.resize(buf.size() * 2);
  }
  buf.resize(std::strlen(buf.c_str()));
  return buf;
}

bool SetCurrentDir(std::string_view dir) { return ::chdir(std::string(dir).c_str()) == 0; }

void ChDir(std::string_view dir) {
  if (::chdir(std::string(dir).c_str()) != 0) {
    const int err = errno;
    throw EInOutError("Cannot change to directory '" + std::string(dir) + "': " + std::strerror(err), err);
  }
}

}  // namespace fw
