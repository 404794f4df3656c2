// TStrings: the framework's abstract list of strings with associated objects (framework layer).
#pragma once

#include <string>
#include <string_view>

#include "TPersistent.h"

namespace fw {

class TStream;

/// A list of strings, each with an untyped object pointer (not owned). Descendants supply the
/// storage; everything else (name=value pairs, comma text, text, streaming) is built on it.
/// Indexes out of range raise EListError. Lines of `Text` end with "\n"; reading text accepts
/// "\r\n", "\n" and "\r".
class TStrings : public TPersistent {
 public:
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override;

  // ---- descendants must implement ----
  virtual int Count() const = 0;
  virtual std::string Get(int index) const = 0;
  virtual void* GetObject(int index) const = 0;
  virtual void Put(int index, const std::string& s) = 0;
  virtual void PutObject(int index, void* object) = 0;
  /// Inserts before `index` (0..Count).
  virtual void Insert(int index, const std::string& s) = 0;
  virtual void Delete(int index) = 0;
  virtual void Clear() = 0;

  // ---- descendants may override ----
  /// Appends and returns the index of the new string.
  virtual int Add(const std::string& s);
  /// Index of the first string equal to `s` under CompareStrings, or -1.
  virtual int IndexOf(std::string_view s) const;
  /// ASCII case-insensitive here (CompareText); the same result on every machine.
  virtual int CompareStrings(std::string_view a, std::string_view b) const;
  virtual void Exchange(int index1, int index2);
  /// Called with true by the first BeginUpdate and false by the last EndUpdate.
  virtual void SetUpdateState(bool /*updating*/) {}

  // ---- built on the above ----
  std::string Strings(int index) const { return Get(index); }
  void SetStrings(int index, const std::string& s) { Put(index, s); }
  void* Objects(int index) const { return GetObject(index); }
  void SetObjects(int index, void* object) { PutObject(index, object); }
  int AddObject(const std::string& s, void* object);
  void InsertObject(int index, const std::string& s, void* object);
  void Append(const std::string& s) { Add(s); }
  void AddStrings(const TStrings& other);
  int IndexOfObject(const void* object) const;
  void Move(int curIndex, int newIndex);
  bool Equals(const TStrings& other) const;
  /// Copies strings and objects of another TStrings; other sources go to TPersistent::Assign.
  void Assign(const TPersistent& source) override;

  /// Name=value entries: `NameValueSeparator` (default '=') splits each string.
  char NameValueSeparator() const { return FNameValueSeparator; }
  void SetNameValueSeparator(char c) { FNameValueSeparator = c; }
  /// Index of the entry whose name is `name` (CompareStrings), or -1.
  int IndexOfName(std::string_view name) const;
  /// The part before the separator ("" when the string has none).
  std::string Names(int index) const;
  /// The part after the first separator ("" when none).
  std::string ValueFromIndex(int index) const;
  /// The value of entry `name`, "" when absent.
  std::string Values(std::string_view name) const;
  /// Sets (or appends) entry `name`; an empty value deletes the entry.
  void SetValues(std::string_view name, const std::string& value);

  /// Delimited text: items joined by `Delimiter`, quoted with `QuoteChar` when they contain
  /// blanks, control characters, the delimiter or the quote. Setting clears the list and splits
  /// the text on the delimiter (and, unless StrictDelimiter, on blanks), honouring quotes.
  char Delimiter() const { return FDelimiter; }
  void SetDelimiter(char c) { FDelimiter = c; }
  char QuoteChar() const { return FQuoteChar; }
  void SetQuoteChar(char c) { FQuoteChar = c; }
  bool StrictDelimiter() const { return FStrictDelimiter; }
  void SetStrictDelimiter(bool v) { FStrictDelimiter = v; }
  std::string DelimitedText() const;
  void SetDelimitedText(std::string_view text);
  /// Delimited text with ',' and '"', whatever Delimiter and QuoteChar are.
  std::string CommaText() const;
  void SetCommaText(std::string_view text);
  std::string Text() const;
  void SetText(std::string_view text);

  /// Nested update brackets; SetUpdateState is told at the outermost ones.
  void BeginUpdate();
  void EndUpdate();
  int UpdateCount() const { return FUpdateCount; }

  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;
  /// EFOpenError / EFCreateError when the file cannot be opened / created.
  void LoadFromFile(const std::string& fileName);
  void SaveToFile(const std::string& fileName) const;

 private:
  std::string Delimited(char delimiter, char quote) const;
  void SetDelimited(std::string_view text, char delimiter, char quote, bool strict);

  char FNameValueSeparator = '=';
  char FDelimiter = ',';
  char FQuoteChar = '"';
  bool FStrictDelimiter = false;
  int FUpdateCount = 0;
};

}  // namespace fw
