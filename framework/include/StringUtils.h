// String, number-text and file-name routines of the framework (framework layer).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "SystemTypes.h"
#include "Variant.h"

namespace fw {

// ---- Format --------------------------------------------------------------------------------

/// Formats `args` into `fmt`. Specifiers: `%[index:][-][width][.prec]type`, type one of
///   d  integer kinds and Boolean (-1/0); `.prec` pads with zeros;
///   u  like d, a negative value taken as unsigned 32-bit;
///   x  upper-case hexadecimal of an integer kind; `.prec` pads with zeros;
///   s  any value except Null and arrays, as `Variant::AsString` (`.prec` truncates);
///   f  fixed point with `prec` decimals (default 2) of any number or date;
///   e  scientific with `prec` significant digits (default 15); g general (`FloatToStr` style);
///   n, m  like f with thousands separators; %% a percent sign.
/// `index:` selects the argument (later specifiers continue from there); `*` as width or
/// precision takes the next argument; `-` left-aligns within `width`. Raises `EConvertError`
/// ("Format '...' invalid or incompatible with argument") when a specifier is malformed, an
/// argument is missing, or its kind does not fit (text or a float for %d/%x, text for %f,
/// Null or an array anywhere).
std::string Format(std::string_view fmt, std::initializer_list<Variant> args);

// ---- Integers and floats as text ------------------------------------------------------------

std::string IntToStr(int64_t value);
/// Upper-case hexadecimal, left-padded with zeros to at least `digits` characters.
std::string IntToHex(int64_t value, int digits);
/// Parse optional blanks, sign, then decimal digits or `$`/`0x` hexadecimal, then optional
/// blanks. Raise `EConvertError` ("'12.5' is not a valid integer value") on anything else,
/// including text such as "12.5", "01/02/2000" or a value outside the target's range.
int32_t StrToInt(std::string_view s);
int64_t StrToInt64(std::string_view s);
int32_t StrToIntDef(std::string_view s, int32_t def);
bool TryStrToInt(std::string_view s, int32_t& value);
bool TryStrToInt64(std::string_view s, int64_t& value);

/// Float formats of FloatToStrF: general (shortest of fixed/scientific with `precision`
/// significant digits), scientific, fixed (`digits` decimals), number (fixed with thousands
/// separators).
enum TFloatFormat : uint8_t { ffGeneral, ffExponent, ffFixed, ffNumber, ffCurrency };

/// General format with 15 significant digits: 0.1 -> "0.1", 1e20 -> "1E20", 1.5e-7 -> "1.5E-7",
/// using `FormatSettings.DecimalSeparator`. NaN and infinities print as "NAN", "INF", "-INF".
std::string FloatToStr(double value);
/// `precision` significant digits (1..18); `digits`: decimals for fixed/number, minimum
/// exponent digits for exponent/general. ffCurrency is ffNumber without a currency symbol.
std::string FloatToStrF(double value, TFloatFormat format, int precision, int digits);
/// Formats with a pattern of `0` (digit), `#` (optional digit), `.` (decimal separator), `,`
/// (thousands grouping), `E+`/`E-` (exponent), quoted literals and up to three `;` sections
/// (positive;negative;zero). An empty pattern gives `FloatToStr`.
std::string FormatFloat(std::string_view pattern, double value);
/// Optional blanks and sign, digits with `FormatSettings.DecimalSeparator`, optional exponent;
/// raise `EConvertError` ("'abc' is not a valid floating point value") otherwise.
double StrToFloat(std::string_view s);
bool TryStrToFloat(std::string_view s, double& value);
double StrToFloatDef(std::string_view s, double def);

/// Currency as text: up to 4 decimals, trailing zeros dropped ("12.5", "-0.0001", "3").
std::string CurrToStr(Currency value);
/// Exact decimal parsing into Currency (extra decimals rounded half to even); raises
/// `EConvertError` on bad text or a value outside the Currency range.
Currency StrToCurr(std::string_view s);
bool TryStrToCurr(std::string_view s, Currency& value);
/// double <-> Currency: rounds to 4 decimals half to even; raises `EConvertError` when outside
/// the Currency range (or NaN).
Currency DoubleToCurr(double value);
double CurrToDouble(Currency value);

/// "True"/"False" (UseBoolStrs) or "-1"/"0".
std::string BoolToStr(bool value, bool useBoolStrs = false);
/// Accepts "True"/"False" in any case and numeric text (non-zero is true); raises
/// `EConvertError` otherwise.
bool StrToBool(std::string_view s);
bool TryStrToBool(std::string_view s, bool& value);

// ---- Case and comparison --------------------------------------------------------------------
//
// The plain forms (UpperCase, LowerCase, CompareText, SameText, CompareStr) change and compare
// only ASCII letters a-z/A-Z and order by byte value: the same result on every machine, used for
// names (fields, components, indexes). The Ansi forms follow the C library's current locale
// (LC_CTYPE for case mapping byte by byte, LC_COLLATE for ordering through strcoll), as the
// framework's locale-aware routines do; under the "C" locale they equal the plain forms, under a
// single-byte Latin locale they also map and order accented letters. Results of the comparisons
// are <0, 0, >0.

std::string UpperCase(std::string_view s);
std::string LowerCase(std::string_view s);
int CompareStr(std::string_view a, std::string_view b);
int CompareText(std::string_view a, std::string_view b);
bool SameText(std::string_view a, std::string_view b);

std::string AnsiUpperCase(std::string_view s);
std::string AnsiLowerCase(std::string_view s);
int AnsiCompareStr(std::string_view a, std::string_view b);
int AnsiCompareText(std::string_view a, std::string_view b);
bool AnsiSameText(std::string_view a, std::string_view b);
/// Locale-aware comparison of at most the first `maxLen` bytes of each string, case-sensitive
/// (`AnsiStrLComp`) or not (`AnsiStrLIComp`).
int AnsiStrLComp(std::string_view a, std::string_view b, std::size_t maxLen);
int AnsiStrLIComp(std::string_view a, std::string_view b, std::size_t maxLen);

// ---- Trimming and quoting -------------------------------------------------------------------

/// Remove leading and/or trailing characters <= ' ' (blanks and control characters).
std::string Trim(std::string_view s);
std::string TrimLeft(std::string_view s);
std::string TrimRight(std::string_view s);
/// `s` in single quotes, inner quotes doubled.
std::string QuotedStr(std::string_view s);
/// Replace the first (or every, `all`) occurrence of `from`; `ignoreCase` compares ASCII
/// case-insensitively. An empty `from` returns `s` unchanged.
std::string StringReplace(std::string_view s, std::string_view from, std::string_view to, bool all,
                          bool ignoreCase = false);

// ---- File names ("/" is the path delimiter) -------------------------------------------------

inline constexpr char PathDelim = '/';
/// The part after the last '/' ("/a/b.dat" -> "b.dat").
std::string ExtractFileName(std::string_view path);
/// Everything up to and including the last '/' ("/a/b.dat" -> "/a/"; "b.dat" -> "").
std::string ExtractFilePath(std::string_view path);
/// `ExtractFilePath` without the trailing '/', except for the root "/".
std::string ExtractFileDir(std::string_view path);
/// The extension with its dot, from the last '.' of the file-name part ("a/b.c.dat" -> ".dat";
/// "a.b/c" -> "").
std::string ExtractFileExt(std::string_view path);
/// Replace (or add, or with "" remove) the extension of the file-name part.
std::string ChangeFileExt(std::string_view path, std::string_view ext);
/// Append '/' unless the text already ends with one ("" -> "/").
std::string IncludeTrailingPathDelimiter(std::string_view path);
/// Drop one trailing '/' unless the text is the root "/".
std::string ExcludeTrailingPathDelimiter(std::string_view path);
bool FileExists(std::string_view path);
bool DirectoryExists(std::string_view path);
bool DeleteFile(std::string_view path);

// ---- Current directory ----------------------------------------------------------------------

/// The process's current directory (without trailing '/', except the root).
std::string GetCurrentDir();
/// Changes the current directory; false (and unchanged) when it cannot.
bool SetCurrentDir(std::string_view dir);
/// Like SetCurrentDir but raises `EInOutError` naming the directory and the system's reason.
void ChDir(std::string_view dir);

}  // namespace fw
