// ParameterFile: a line-oriented parser; every statement is a keyword followed by name=value
// attributes, so that a file reads as documentation of the tables it describes.
#include "ParameterFile.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

namespace {

const std::map<std::string, int>& ModeNames() {
  static const std::map<std::string, int> names = {
      {"EXCLUSIVE", EXCLUSIVE}, {"SHARED", SHARED},       {"VLENGTH", VLENGTH},     {"READFIL", READFIL},
      {"PREIMG", PREIMG},       {"TRNLOG", TRNLOG},       {"WRITETHRU", WRITETHRU}, {"CHECKLOCK", CHECKLOCK},
      {"REGSEG", REGSEG},       {"INTSEG", INTSEG},       {"UREGSEG", UREGSEG},     {"SRLSEG", SRLSEG},
      {"VARSEG", VARSEG},       {"UVARSEG", UVARSEG},     {"SGNSEG", SGNSEG},       {"FLTSEG", FLTSEG},
      {"SCHSEG", SCHSEG},       {"USCHSEG", USCHSEG},     {"VSCHSEG", VSCHSEG},     {"UVSCHSEG", UVSCHSEG},
      {"DSCSEG", DSCSEG},       {"ALTSEG", ALTSEG}};
  return names;
}

class Statement {
 public:
  Statement(const std::string& keyword, std::map<std::string, std::string> attrs, int line)
      : keyword_(keyword), attrs_(std::move(attrs)), line_(line) {}

  [[noreturn]] void Bad() const { Throw(CT_EBADPARM, line_); }

  // Every attribute must be one of allowed.
  void Allow(std::initializer_list<const char*> allowed) const {
    for (const auto& [name, value] : attrs_) {
      bool ok = false;
      for (const char* a : allowed) ok = ok || name == a;
      if (!ok) Bad();
    }
  }
  bool Has(const char* name) const { return attrs_.count(name) != 0; }
  std::string Text(const char* name) const {
    auto it = attrs_.find(name);
    if (it == attrs_.end() || it->second.empty()) Bad();
    return it->second;
  }
  // A number (decimal or 0x hexadecimal) within lo .. hi, or def when absent.
  long Number(const char* name, long lo, long hi, long def, bool required = false) const {
    if (!Has(name)) {
      if (required) Bad();
      return def;
    }
    const std::string v = Text(name);
    char* end = nullptr;
    errno = 0;
    long n = std::strtol(v.c_str(), &end, 0);
    if (errno || *end || n < lo || n > hi) Bad();
    return n;
  }
  // Mode names joined by '|', or a number.
  int Mode(const char* name, int def) const {
    if (!Has(name)) return def;
    const std::string v = Text(name);
    if (v[0] >= '0' && v[0] <= '9') return static_cast<int>(Number(name, 0, 0x7FFF, def));
    int mode = 0;
    std::stringstream parts(v);
    std::string part;
    while (std::getline(parts, part, '|')) {
      auto it = ModeNames().find(part);
      if (it == ModeNames().end()) Bad();
      mode |= it->second;
    }
    return mode;
  }

 private:
  std::string keyword_;
  std::map<std::string, std::string> attrs_;
  int line_;
};

}  // namespace

Parameters ParseParameters(const std::string& text) {
  Parameters p;
  std::stringstream in(text);
  std::string raw;
  bool sawSession = false;
  for (int line = 1; std::getline(in, raw); ++line) {
    if (size_t hash = raw.find('#'); hash != std::string::npos) raw.erase(hash);
    std::stringstream words(raw);
    std::string keyword, word;
    if (!(words >> keyword)) continue;
    std::map<std::string, std::string> attrs;
    while (words >> word) {
      size_t eq = word.find('=');
      if (eq == std::string::npos || eq == 0 || !attrs.emplace(word.substr(0, eq), word.substr(eq + 1)).second)
        Throw(CT_EBADPARM, line);
    }
    Statement st(keyword, std::move(attrs), line);
    if (keyword == "session") {
      st.Allow({"files"});
      if (sawSession || !p.tables.empty()) st.Bad();
      sawSession = true;
      p.fils = static_cast<int>(st.Number("files", 1, CT_MAXFILES, 32, true));
    } else if (keyword == "table") {
      st.Allow({"name", "number", "reclen", "mode"});
      FileDef d;
      d.name = st.Text("name");
      d.dfilno = static_cast<int16_t>(st.Number("number", -1, CT_MAXFILES - 1, -1));
      d.reclen = static_cast<int16_t>(st.Number("reclen", 1, 0x7FFF, 0, true));
      d.dfilmod = static_cast<int16_t>(st.Mode("mode", EXCLUSIVE));
      d.ifilmod = d.dfilmod;
      p.tables.push_back(std::move(d));
    } else if (keyword == "index") {
      st.Allow({"name", "keylen", "dup", "nulkey", "empchr", "file"});
      if (p.tables.empty()) st.Bad();
      IndexDef ix;
      ix.keylen = static_cast<int16_t>(st.Number("keylen", 1, CT_MAXKEYLEN, 0, true));
      ix.dup = static_cast<int16_t>(st.Number("dup", 0, 1, 0));
      ix.nulkey = static_cast<int16_t>(st.Number("nulkey", 0, 1, 0));
      ix.empchr = static_cast<int16_t>(st.Number("empchr", 0, 255, 0));
      if (st.Has("name")) ix.name = st.Text("name");
      if (st.Has("file")) ix.fileName = st.Text("file");
      p.tables.back().idx.push_back(std::move(ix));
    } else if (keyword == "segment") {
      st.Allow({"offset", "length", "mode"});
      if (p.tables.empty() || p.tables.back().idx.empty()) st.Bad();
      SegDef s;
      s.offset = static_cast<int16_t>(st.Number("offset", 0, 0x7FFF, 0, true));
      s.length = static_cast<int16_t>(st.Number("length", 1, CT_MAXKEYLEN, 0, true));
      s.mode = static_cast<int16_t>(st.Mode("mode", REGSEG));
      p.tables.back().idx.back().segs.push_back(s);
    } else {
      st.Bad();
    }
  }
  return p;
}

Parameters ReadParameters(const char* path) {
  if (!path || !*path) Throw(CT_EBADARG);
  std::ifstream in(path, std::ios::binary);
  if (!in) Throw(FNOP_ERR, errno);
  std::stringstream text;
  text << in.rdbuf();
  return ParseParameters(text.str());
}

}  // namespace cte
