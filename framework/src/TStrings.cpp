// TStrings: name=value pairs, delimited text, text and streaming over the descendant's storage.
#include "TStrings.h"

#include <string>

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TFileStream.h"
#include "TMemoryStream.h"

namespace fw {

const TClassInfo& TStrings::StaticClass() {
  // Form files write a string list as "Lines.Strings = ( ... )": "Strings" names the list itself.
  static const TClassInfo info = [] {
    TClassInfo c("TStrings", &TPersistent::StaticClass());
    TPropInfo strings;
    strings.Name = "Strings";
    strings.Kind = pkObject;
    strings.GetObject = [](TPersistent& self) { return &self; };
    c.AddProperty(std::move(strings));
    return c;
  }();
  return info;
}

const TClassInfo& TStrings::ClassType() const { return StaticClass(); }

int TStrings::Add(const std::string& s) {
  const int index = Count();
  Insert(index, s);
  return index;
}

int TStrings::IndexOf(std::string_view s) const {
  for (int i = 0; i < Count(); ++i)
    if (CompareStrings(Get(i), s) == 0) return i;
  return -1;
}

int TStrings::CompareStrings(std::string_view a, std::string_view b) const { return CompareText(a, b); }

void TStrings::Exchange(int index1, int index2) {
  const std::string s1 = Get(index1);
  void* o1 = GetObject(index1);
  Put(index1, Get(index2));
  PutObject(index1, GetObject(index2));
  Put(index2, s1);
  PutObject(index2, o1);
}

int TStrings::AddObject(const std::string& s, void* object) {
  const int index = Add(s);
  PutObject(index, object);
  return index;
}

void TStrings::InsertObject(int index, const std::string& s, void* object) {
  Insert(index, s);
  PutObject(index, object);
}

void TStrings::AddStrings(const TStrings& other) {
  BeginUpdate();
  try {
    for (int i = 0; i < other.Count(); ++i) AddObject(other.Get(i), other.GetObject(i));
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

int TStrings::IndexOfObject(const void* object) const {
  for (int i = 0; i < Count(); ++i)
    if (GetObject(i) == object) return i;
  return -1;
}

void TStrings::Move(int curIndex, int newIndex) {
  if (curIndex == newIndex) return;
  const std::string s = Get(curIndex);
  void* o = GetObject(curIndex);
  Delete(curIndex);
  InsertObject(newIndex, s, o);
}

bool TStrings::Equals(const TStrings& other) const {
  if (Count() != other.Count()) return false;
  for (int i = 0; i < Count(); ++i)
    if (Get(i) != other.Get(i)) return false;
  return true;
}

void TStrings::Assign(const TPersistent& source) {
  const auto* other = dynamic_cast<const TStrings*>(&source);
  if (other == nullptr) {
    TPersistent::Assign(source);
    return;
  }
  if (other == this) return;
  BeginUpdate();
  try {
    Clear();
    AddStrings(*other);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

int TStrings::IndexOfName(std::string_view name) const {
  for (int i = 0; i < Count(); ++i) {
    const std::string s = Get(i);
    const std::size_t sep = s.find(FNameValueSeparator);
    if (sep != std::string::npos && CompareStrings(std::string_view(s).substr(0, sep), name) == 0) return i;
  }
  return -1;
}

std::string TStrings::Names(int index) const {
  const std::string s = Get(index);
  const std::size_t sep = s.find(FNameValueSeparator);
  return sep == std::string::npos ? std::string() : s.substr(0, sep);
}

std::string TStrings::ValueFromIndex(int index) const {
  const std::string s = Get(index);
  const std::size_t sep = s.find(FNameValueSeparator);
  return sep == std::string::npos ? std::string() : s.substr(sep + 1);
}

std::string TStrings::Values(std::string_view name) const {
  const int i = IndexOfName(name);
  return i < 0 ? std::string() : ValueFromIndex(i);
}

void TStrings::SetValues(std::string_view name, const std::string& value) {
  const int i = IndexOfName(name);
  if (value.empty()) {
    if (i >= 0) Delete(i);
    return;
  }
  const std::string entry = std::string(name) + FNameValueSeparator + value;
  if (i >= 0) Put(i, entry);
  else Add(entry);
}

std::string TStrings::Delimited(char delimiter, char quote) const {
  if (Count() == 1 && Get(0).empty()) return std::string(2, quote);
  std::string out;
  for (int i = 0; i < Count(); ++i) {
    const std::string s = Get(i);
    bool needsQuotes = false;
    for (char c : s)
      if (static_cast<unsigned char>(c) <= ' ' || c == quote || c == delimiter) needsQuotes = true;
    if (i > 0) out += delimiter;
    if (!needsQuotes) {
      out += s;
      continue;
    }
    out += quote;
    for (char c : s) {
      out += c;
      if (c == quote) out += quote;
    }
    out += quote;
  }
  return out;
}

void TStrings::SetDelimited(std::string_view text, char delimiter, char quote, bool strict) {
  auto blank = [](char c) { return c != '\0' && static_cast<unsigned char>(c) <= ' '; };
  BeginUpdate();
  try {
    Clear();
    std::size_t p = 0;
    const std::size_t n = text.size();
    if (!strict)
      while (p < n && blank(text[p])) ++p;
    while (p < n) {
      std::string item;
      if (text[p] == quote) {
        ++p;
        while (p < n) {
          if (text[p] == quote) {
            if (p + 1 < n && text[p + 1] == quote) {
              item += quote;
              p += 2;
              continue;
            }
            ++p;
            break;
          }
          item += text[p++];
        }
      } else {
        const std::size_t start = p;
        while (p < n && text[p] != delimiter && (strict || static_cast<unsigned char>(text[p]) > ' ')) ++p;
        item = std::string(text.substr(start, p - start));
      }
      Add(item);
      if (!strict)
        while (p < n && blank(text[p])) ++p;
      if (p < n && text[p] == delimiter) {
        ++p;
        if (p == n) Add("");
        if (!strict)
          while (p < n && blank(text[p])) ++p;
      } else if (strict && p < n) {
        // Text after a closing quote up to the next delimiter belongs to no item.
        while (p < n && text[p] != delimiter) ++p;
      }
    }
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

std::string TStrings::DelimitedText() const { return Delimited(FDelimiter, FQuoteChar); }
void TStrings::SetDelimitedText(std::string_view text) { SetDelimited(text, FDelimiter, FQuoteChar, FStrictDelimiter); }
std::string TStrings::CommaText() const { return Delimited(',', '"'); }
void TStrings::SetCommaText(std::string_view text) { SetDelimited(text, ',', '"', false); }

std::string TStrings::Text() const {
  std::string out;
  for (int i = 0; i < Count(); ++i) out.append(Get(i)).append("\n");
  return out;
}

void TStrings::SetText(std::string_view text) {
  BeginUpdate();
  try {
    Clear();
    std::size_t p = 0;
    while (p < text.size()) {
      const std::size_t eol = text.find_first_of("\r\n", p);
      if (eol == std::string_view::npos) {
        Add(std::string(text.substr(p)));
        break;
      }
      Add(std::string(text.substr(p, eol - p)));
      p = eol + 1;
      if (text[eol] == '\r' && p < text.size() && text[p] == '\n') ++p;
    }
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TStrings::BeginUpdate() {
  if (FUpdateCount++ == 0) SetUpdateState(true);
}

void TStrings::EndUpdate() {
  if (FUpdateCount > 0 && --FUpdateCount == 0) SetUpdateState(false);
}

void TStrings::LoadFromStream(TStream& stream) {
  const int64_t size = stream.Size() - stream.Position();
  std::string text(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
  if (!text.empty()) stream.ReadBuffer(text.data(), static_cast<int64_t>(text.size()));
  SetText(text);
}

void TStrings::SaveToStream(TStream& stream) const {
  const std::string text = Text();
  stream.WriteBuffer(text.data(), static_cast<int64_t>(text.size()));
}

void TStrings::LoadFromFile(const std::string& fileName) {
  TFileStream file(fileName, fmOpenRead);
  LoadFromStream(file);
}

void TStrings::SaveToFile(const std::string& fileName) const {
  TFileStream file(fileName, fmCreate);
  SaveToStream(file);
}

}  // namespace fw
