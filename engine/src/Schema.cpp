// Schema: validation and the stored images of file definitions and field lists.
#include "Schema.h"

#include <cstring>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr uint32_t kDefVersion = 1;
// Definition images of version 2 add, per index, the condition, key database and temporary flag.
constexpr uint32_t kIfilVersion = 2;
// Version 3 adds, per index, the alternate collating sequence (a string of 0 or 256 bytes).
constexpr uint32_t kAltVersion = 3;

class Writer {
 public:
  void U16(uint16_t v) { Raw(&v, 2); }
  void U32(uint32_t v) { Raw(&v, 4); }
  void Str(const std::string& s) {
    U32(static_cast<uint32_t>(s.size()));
    out_ += s;
  }
  std::string Take() { return std::move(out_); }

 private:
  void Raw(const void* p, size_t n) { out_.append(static_cast<const char*>(p), n); }
  std::string out_;
};

class Reader {
 public:
  explicit Reader(const std::string& in) : in_(in) {}
  uint16_t U16() {
    uint16_t v;
    Raw(&v, 2);
    return v;
  }
  int16_t S16() { return static_cast<int16_t>(U16()); }
  uint32_t U32() {
    uint32_t v;
    Raw(&v, 4);
    return v;
  }
  std::string Str() {
    uint32_t n = U32();
    if (n > in_.size() - pos_) Throw(CT_EDAMAGED);
    std::string s = in_.substr(pos_, n);
    pos_ += n;
    return s;
  }
  void End() const {
    if (pos_ != in_.size()) Throw(CT_EDAMAGED);
  }

 private:
  void Raw(void* p, size_t n) {
    if (n > in_.size() - pos_) Throw(CT_EDAMAGED);
    std::memcpy(p, in_.data() + pos_, n);
    pos_ += n;
  }
  const std::string& in_;
  size_t pos_ = 0;
};

bool ByFieldNumber(int mode) {
  int m = mode & ~(DSCSEG | ALTSEG);
  return m == VARSEG || m == UVARSEG || (m >= SCHSEG && m <= UVSCHSEG);
}

}  // namespace

bool IsVariable(uint16_t type) {
  return type == CT_STRING || type == CT_PSTRING || type == CT_2STRING || type == CT_4STRING;
}

void Validate(const FileDef& def) {
  if (def.name.empty()) Throw(CT_EBADDEF);
  if (def.reclen <= 0) Throw(CT_EBADDEF);
  for (const IndexDef& ix : def.idx) {
    if (ix.segs.empty()) Throw(CT_EBADDEF);
    if (ix.segs.size() > CT_MAXSEG) Throw(CT_EKEYLEN);
    if (ix.keylen <= 0) Throw(CT_EBADDEF);
    if (ix.keylen > CT_MAXKEYLEN) Throw(CT_EKEYLEN);
    if (ix.dup != 0 && ix.dup != 1) Throw(CT_EBADDEF);
    int sum = 0;
    for (const SegDef& s : ix.segs) {
      int m = s.mode & ~(DSCSEG | ALTSEG);
      if (s.length <= 0 || s.offset < 0) Throw(CT_EBADDEF);
      if (!(m <= FLTSEG || (m >= SCHSEG && m <= UVSCHSEG))) Throw(CT_EBADDEF);
      if (m == SRLSEG && s.length != 4) Throw(CT_EBADDEF);
      if (!ByFieldNumber(s.mode) && s.offset + s.length > def.reclen) Throw(CT_EBADDEF);
      sum += s.length;
    }
    if (sum + (ix.dup ? 4 : 0) > ix.keylen) Throw(CT_EBADDEF);
  }
}

std::string Serialize(const FileDef& def) {
  Writer w;
  w.U32(kAltVersion);
  w.Str(def.name);
  for (int16_t v : {def.dfilno, def.reclen, def.dxtdsiz, def.dfilmod, def.ixtdsiz, def.ifilmod,
                    def.tfilno})
    w.U16(static_cast<uint16_t>(v));
  w.Str(def.rfstfld);
  w.Str(def.rlstfld);
  w.U32(static_cast<uint32_t>(def.idx.size()));
  for (const IndexDef& ix : def.idx) {
    for (int16_t v : {ix.keylen, ix.keytype, ix.dup, ix.nulkey, ix.empchr})
      w.U16(static_cast<uint16_t>(v));
    w.Str(ix.name);
    w.Str(ix.fileName);
    w.Str(ix.file);
    w.U32(static_cast<uint32_t>(ix.segs.size()));
    for (const SegDef& s : ix.segs) {
      w.U16(static_cast<uint16_t>(s.offset));
      w.U16(static_cast<uint16_t>(s.length));
      w.U16(static_cast<uint16_t>(s.mode));
    }
    w.Str(ix.cond);
    w.U16(static_cast<uint16_t>(ix.keydb));
    w.U16(static_cast<uint16_t>(ix.temp));
    w.Str(std::string(ix.altseq.begin(), ix.altseq.end()));
  }
  return w.Take();
}

FileDef ParseFileDef(const std::string& image) {
  Reader r(image);
  const uint32_t version = r.U32();
  if (version != kDefVersion && version != kIfilVersion && version != kAltVersion) Throw(CT_EDAMAGED);
  FileDef d;
  d.name = r.Str();
  d.dfilno = r.S16();
  d.reclen = r.S16();
  d.dxtdsiz = r.S16();
  d.dfilmod = r.S16();
  d.ixtdsiz = r.S16();
  d.ifilmod = r.S16();
  d.tfilno = r.S16();
  d.rfstfld = r.Str();
  d.rlstfld = r.Str();
  uint32_t n = r.U32();
  if (n > 1024) Throw(CT_EDAMAGED);
  d.idx.resize(n);
  for (IndexDef& ix : d.idx) {
    ix.keylen = r.S16();
    ix.keytype = r.S16();
    ix.dup = r.S16();
    ix.nulkey = r.S16();
    ix.empchr = r.S16();
    ix.name = r.Str();
    ix.fileName = r.Str();
    ix.file = r.Str();
    uint32_t ns = r.U32();
    if (ns > CT_MAXSEG) Throw(CT_EDAMAGED);
    ix.segs.resize(ns);
    for (SegDef& s : ix.segs) {
      s.offset = r.S16();
      s.length = r.S16();
      s.mode = r.S16();
    }
    if (version >= kIfilVersion) {
      ix.cond = r.Str();
      ix.keydb = r.S16();
      ix.temp = r.S16();
    }
    if (version >= kAltVersion) {
      std::string alt = r.Str();
      if (!alt.empty() && alt.size() != 256) Throw(CT_EDAMAGED);
      ix.altseq.assign(alt.begin(), alt.end());
    }
  }
  for (size_t i = 0; i < d.idx.size(); ++i)
    if (d.idx[i].keydb < 0) d.idx[i].keydb = static_cast<int16_t>(i);
  r.End();
  return d;
}

std::string Serialize(const std::vector<FieldDef>& fields) {
  Writer w;
  w.U32(kDefVersion);
  w.U32(static_cast<uint32_t>(fields.size()));
  for (const FieldDef& f : fields) {
    w.Str(f.name);
    w.U16(f.type);
    w.U32(f.len);
  }
  return w.Take();
}

std::vector<FieldDef> ParseFields(const std::string& image) {
  Reader r(image);
  if (r.U32() != kDefVersion) Throw(CT_EDAMAGED);
  uint32_t n = r.U32();
  if (n > 65535) Throw(CT_EDAMAGED);
  std::vector<FieldDef> fields(n);
  for (FieldDef& f : fields) {
    f.name = r.Str();
    f.type = r.U16();
    f.len = r.U32();
  }
  r.End();
  return fields;
}

}  // namespace cte
