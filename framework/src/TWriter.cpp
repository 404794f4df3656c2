// TWriter: published properties and child objects as form text.
#include "TWriter.h"

#include <charconv>
#include <cmath>

#include "Exception.h"
#include "TClassInfo.h"
#include "TCollection.h"
#include "TComponent.h"
#include "TFileStream.h"
#include "TStrings.h"

namespace fw {

namespace {

// Printable characters go inside quotes (quotes doubled), others as #nnn pieces.
std::string QuoteString(const std::string& s) {
  if (s.empty()) return "''";
  std::string out;
  bool inQuotes = false;
  for (char ch : s) {
    const auto c = static_cast<unsigned char>(ch);
    if (c >= 32 && c < 127) {
      if (!inQuotes) out += '\'';
      inQuotes = true;
      out += ch;
      if (ch == '\'') out += '\'';
    } else {
      if (inQuotes) out += '\'';
      inQuotes = false;
      out += '#' + std::to_string(c);
    }
  }
  if (inQuotes) out += '\'';
  return out;
}

// Shortest text that reads back to the same double.
std::string FloatText(double v) {
  if (!std::isfinite(v)) throw EWriteError("Cannot write a non-finite floating point value");
  char buf[64];
  const auto res = std::to_chars(buf, buf + sizeof buf, v);
  std::string s(buf, res.ptr);
  for (char& c : s)
    if (c == 'e') c = 'E';
  return s;
}

// Exact decimal with a '.' and the currency suffix, e.g. "-12.5c".
std::string CurrencyText(Currency v) {
  const bool neg = v < 0;
  const uint64_t mag = neg ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
  std::string frac = std::to_string(mag % 10000);
  frac.insert(0, 4 - frac.size(), '0');
  while (!frac.empty() && frac.back() == '0') frac.pop_back();
  return (neg ? "-" : "") + std::to_string(mag / 10000) + (frac.empty() ? "" : "." + frac) + "c";
}

std::string BinaryText(std::string_view bytes) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (char ch : bytes) {
    const auto c = static_cast<unsigned char>(ch);
    out += kHex[c >> 4];
    out += kHex[c & 15];
  }
  return out;
}

}  // namespace

std::string WriteComponentText(TComponent& root) { return TWriter(root).Write(); }

void WriteComponentFile(const std::string& fileName, TComponent& root) {
  const std::string text = WriteComponentText(root);
  TFileStream file(fileName, fmCreate);
  file.WriteBuffer(text.data(), static_cast<int64_t>(text.size()));
}

std::string TWriter::Write() {
  FOut.clear();
  WriteObject(FRoot, 0);
  return FOut;
}

void TWriter::Line(int indent, const std::string& text) {
  FOut.append(static_cast<std::size_t>(indent), ' ').append(text).append("\n");
}

void TWriter::WriteObject(TComponent& c, int indent) {
  c.SetComponentStateFlag(csWriting, true);
  struct ClearWriting {
    TComponent& C;
    ~ClearWriting() { C.SetComponentStateFlag(csWriting, false); }
  } clear{c};
  Line(indent, "object " + (c.Name().empty() ? "" : c.Name() + ": ") + c.ClassName());
  WriteProperties(c, "", indent + 2);
  c.GetChildren([&](TComponent* child) { WriteObject(*child, indent + 2); }, &FRoot);
  Line(indent, "end");
}

void TWriter::WriteProperties(TPersistent& object, const std::string& prefix, int indent) {
  const bool isComponent = dynamic_cast<TComponent*>(&object) != nullptr;
  for (const TPropInfo* p : object.ClassType().Properties()) {
    const std::string name = prefix + p->Name;
    if (isComponent && prefix.empty() && p->Name == "Name") continue;
    if (p->Kind == pkObject) {
      TPersistent* sub = p->GetObject(object);
      if (sub == nullptr || sub == &object) continue;
      if (auto* strings = dynamic_cast<TStrings*>(sub)) {
        if (strings->Count() == 0) continue;
        Line(indent, name + ".Strings = (");
        for (int i = 0; i < strings->Count(); ++i)
          Line(indent + 2, QuoteString(strings->Strings(i)) + (i + 1 == strings->Count() ? ")" : ""));
      } else if (auto* collection = dynamic_cast<TCollection*>(sub)) {
        if (collection->Count() == 0) continue;
        Line(indent, name + " = <");
        for (int i = 0; i < collection->Count(); ++i) {
          Line(indent + 2, "item");
          WriteProperties(*collection->Items(i), "", indent + 4);
          Line(indent + 2, i + 1 == collection->Count() ? "end>" : "end");
        }
      } else {
        WriteProperties(*sub, name + ".", indent);
      }
      continue;
    }
    if (p->ReadOnly()) continue;
    if (p->Kind == pkComponent) {
      TComponent* target = p->GetComponent(object);
      if (target == nullptr || target->Name().empty()) continue;
      std::string ref = target->Name();
      if (target != &FRoot && target->Owner() != &FRoot && target->Owner() != nullptr)
        ref = target->Owner()->Name() + "." + ref;
      Line(indent, name + " = " + ref);
      continue;
    }
    const Variant value = p->Get(object);
    if (!p->Default.IsEmpty() && VarSameValue(value, p->Default)) continue;
    std::string text;
    switch (p->Kind) {
      case pkInteger:
      case pkInt64:
        text = std::to_string(value.AsInt64());
        break;
      case pkFloat:
        text = FloatText(value.AsDouble());
        break;
      case pkCurrency:
        text = CurrencyText(value.AsCurrency());
        break;
      case pkString:
        if (value.AsString().empty()) continue;
        text = QuoteString(value.AsString());
        break;
      case pkBoolean:
        text = value.AsBoolean() ? "True" : "False";
        break;
      case pkEnum: {
        const int64_t ord = value.AsInt64();
        if (ord < 0 || ord >= static_cast<int64_t>(p->Names.size()))
          throw EWriteError("Property " + name + " holds an enumeration value without a name");
        text = p->Names[ord];
        break;
      }
      case pkSet: {
        const uint64_t mask = static_cast<uint64_t>(value.AsInt64());
        text = "[";
        for (std::size_t i = 0; i < p->Names.size() && i < 64; ++i)
          if (mask >> i & 1u) text += (text.size() > 1 ? ", " : "") + p->Names[i];
        text += "]";
        break;
      }
      case pkBinary:
        if (value.Bytes().empty()) continue;
        text = "{" + BinaryText(value.Bytes()) + "}";
        break;
      default:
        continue;
    }
    Line(indent, name + " = " + text);
  }
}

}  // namespace fw

