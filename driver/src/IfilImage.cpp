// IfilImage: packed IFIL/IIDX/ISEG and DATOBJ images in the engine's packings (driver).
#include "IfilImage.h"

#include <algorithm>
#include <cstring>

#include "ctisam.h"

namespace Ctdb {
namespace {

constexpr size_t RoundUp8(size_t n) { return (n + 7) & ~size_t{7}; }

// True when the n bytes at p lie inside [data, data + size).
bool InRange(const uint8_t* data, size_t size, const void* p, size_t n) {
  const auto base = reinterpret_cast<uintptr_t>(data);
  const auto at = reinterpret_cast<uintptr_t>(p);
  return at >= base && at - base <= size && n <= size - (at - base);
}

// Reads the zero-terminated name at p, which must end inside the image; null is an absent name.
bool ReadName(const uint8_t* data, size_t size, const char* p, std::optional<std::string>& out) {
  if (p == nullptr) {
    out.reset();
    return true;
  }
  if (!InRange(data, size, p, 1)) return false;
  const size_t room = size - static_cast<size_t>(reinterpret_cast<const uint8_t*>(p) - data);
  const size_t len = strnlen(p, room);
  if (len == room) return false;
  out = std::string(p, len);
  return true;
}

// Copies one record out of the image; the engine may place records at any byte offset.
template <typename T>
T Load(const void* p) {
  T value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

template <typename F, typename X, typename S>
bool DecodeIfil(const uint8_t* data, size_t size, IfilDefinition& out) {
  if (data == nullptr || size < sizeof(F)) return false;
  const F f = Load<F>(data);
  if (f.dnumidx < 0) return false;
  std::optional<std::string> name;
  if (!ReadName(data, size, f.pfilnam, name)) return false;
  out.pfilnam = name.value_or(std::string());
  if (!ReadName(data, size, f.rfstfld, out.rfstfld) || !ReadName(data, size, f.rlstfld, out.rlstfld))
    return false;
  out.dfilno = f.dfilno;
  out.dreclen = f.dreclen;
  out.dxtdsiz = f.dxtdsiz;
  out.dfilmod = f.dfilmod;
  out.ixtdsiz = f.ixtdsiz;
  out.ifilmod = f.ifilmod;
  out.tfilno = f.tfilno;
  out.ix.clear();
  if (f.dnumidx > 0 && !InRange(data, size, f.ix, sizeof(X) * static_cast<size_t>(f.dnumidx))) return false;
  for (int i = 0; i < f.dnumidx; ++i) {
    const X x = Load<X>(f.ix + i);
    if (x.inumseg < 0) return false;
    if (x.inumseg > 0 && !InRange(data, size, x.seg, sizeof(S) * static_cast<size_t>(x.inumseg))) return false;
    IidxDefinition idx;
    idx.ikeylen = x.ikeylen;
    idx.ikeytyp = x.ikeytyp;
    idx.ikeydup = x.ikeydup;
    idx.inulkey = x.inulkey;
    idx.iempchr = x.iempchr;
    if (!ReadName(data, size, x.ridxnam, idx.ridxnam) || !ReadName(data, size, x.aidxnam, idx.aidxnam))
      return false;
    for (int s = 0; s < x.inumseg; ++s) {
      const S seg = Load<S>(x.seg + s);
      idx.seg.push_back({seg.soffset, seg.slength, seg.segmode});
    }
    out.ix.push_back(std::move(idx));
  }
  return true;
}

// Writes the names of a block after its records; returns where each landed (null for absent).
class NameArea {
 public:
  NameArea(char* at) : FAt(at) {}
  char* Put(const std::optional<std::string>& s) {
    if (!s) return nullptr;
    char* p = FAt;
    std::memcpy(p, s->c_str(), s->size() + 1);
    FAt += s->size() + 1;
    return p;
  }

 private:
  char* FAt;
};

size_t NameBytes(const std::optional<std::string>& s) { return s ? s->size() + 1 : 0; }

template <typename F, typename X, typename S>
void EncodeIfil(const IfilDefinition& def, std::vector<uint64_t>& block) {
  const size_t idxAt = RoundUp8(sizeof(F));
  size_t segAt = RoundUp8(idxAt + sizeof(X) * def.ix.size());
  size_t namesAt = segAt;
  for (const auto& x : def.ix) namesAt = RoundUp8(namesAt + sizeof(S) * x.seg.size());
  size_t total = namesAt + def.pfilnam.size() + 1 + NameBytes(def.rfstfld) + NameBytes(def.rlstfld);
  for (const auto& x : def.ix) total += NameBytes(x.ridxnam) + NameBytes(x.aidxnam);
  block.assign(RoundUp8(total) / 8, 0);

  auto* base = reinterpret_cast<char*>(block.data());
  NameArea names(base + namesAt);
  F f{};
  f.pfilnam = names.Put(def.pfilnam);
  f.dfilno = def.dfilno;
  f.dreclen = def.dreclen;
  f.dxtdsiz = def.dxtdsiz;
  f.dfilmod = def.dfilmod;
  f.dnumidx = static_cast<COUNT>(def.ix.size());
  f.ixtdsiz = def.ixtdsiz;
  f.ifilmod = def.ifilmod;
  f.ix = def.ix.empty() ? nullptr : reinterpret_cast<X*>(base + idxAt);
  f.rfstfld = names.Put(def.rfstfld);
  f.rlstfld = names.Put(def.rlstfld);
  f.tfilno = def.tfilno;
  std::memcpy(base, &f, sizeof f);

  for (size_t i = 0; i < def.ix.size(); ++i) {
    const auto& d = def.ix[i];
    X x{};
    x.ikeylen = d.ikeylen;
    x.ikeytyp = d.ikeytyp;
    x.ikeydup = d.ikeydup;
    x.inulkey = d.inulkey;
    x.iempchr = d.iempchr;
    x.inumseg = static_cast<COUNT>(d.seg.size());
    x.seg = d.seg.empty() ? nullptr : reinterpret_cast<S*>(base + segAt);
    x.ridxnam = names.Put(d.ridxnam);
    x.aidxnam = names.Put(d.aidxnam);
    for (size_t s = 0; s < d.seg.size(); ++s) {
      S seg{d.seg[s].soffset, d.seg[s].slength, d.seg[s].segmode};
      std::memcpy(base + segAt + s * sizeof(S), &seg, sizeof seg);
    }
    segAt = RoundUp8(segAt + sizeof(S) * d.seg.size());
    std::memcpy(base + idxAt + i * sizeof(X), &x, sizeof x);
  }
}

template <typename D>
bool DecodeDoda(const uint8_t* data, size_t size, std::vector<DodaEntry>& out) {
  if (data == nullptr) return false;
  out.clear();
  // The records run up to the first name (the engine may pad between them): each record read
  // may lower that bound.
  size_t namesAt = size;
  for (size_t at = 0; at + sizeof(D) <= namesAt; at += sizeof(D)) {
    const D d = Load<D>(data + at);
    std::optional<std::string> name;
    if (d.fsymb == nullptr || !ReadName(data, size, d.fsymb, name)) return false;
    const auto nameAt = static_cast<size_t>(reinterpret_cast<const uint8_t*>(d.fsymb) - data);
    if (nameAt < at + sizeof(D)) return false;
    namesAt = std::min(namesAt, nameAt);
    out.push_back({*name, d.ftype, d.flen});
  }
  return true;
}

template <typename D>
void EncodeDoda(const std::vector<DodaEntry>& entries, std::vector<uint64_t>& block) {
  size_t total = sizeof(D) * entries.size();
  for (const auto& e : entries) total += e.Name.size() + 1;
  block.assign(RoundUp8(total) / 8 + 1, 0);
  auto* base = reinterpret_cast<char*>(block.data());
  NameArea names(base + sizeof(D) * entries.size());
  for (size_t i = 0; i < entries.size(); ++i) {
    D d{};
    d.fsymb = names.Put(entries[i].Name);
    d.ftype = entries[i].Type;
    d.flen = entries[i].Length;
    std::memcpy(base + i * sizeof(D), &d, sizeof d);
  }
}

}  // namespace

IfilImage::IfilImage(const IfilDefinition& def, int packing) : FPacking(packing) {
  switch (packing) {
    case 2: EncodeIfil<IFIL_P2, IIDX_P2, ISEG_P2>(def, FBlock); break;
    case 4: EncodeIfil<IFIL_P4, IIDX_P4, ISEG_P4>(def, FBlock); break;
    default: FPacking = 1; EncodeIfil<IFIL_P1, IIDX_P1, ISEG_P1>(def, FBlock); break;
  }
}

int16_t IfilImage::tfilno() const {
  const auto* base = reinterpret_cast<const char*>(FBlock.data());
  switch (FPacking) {
    case 2: return Load<COUNT>(base + offsetof(IFIL_P2, tfilno));
    case 4: return Load<COUNT>(base + offsetof(IFIL_P4, tfilno));
    default: return Load<COUNT>(base + offsetof(IFIL_P1, tfilno));
  }
}

bool DecodeIfilImage(const uint8_t* data, size_t size, int packing, IfilDefinition& out) {
  switch (packing) {
    case 1: return DecodeIfil<IFIL_P1, IIDX_P1, ISEG_P1>(data, size, out);
    case 2: return DecodeIfil<IFIL_P2, IIDX_P2, ISEG_P2>(data, size, out);
    case 4: return DecodeIfil<IFIL_P4, IIDX_P4, ISEG_P4>(data, size, out);
    default: return false;
  }
}

bool DecodeDodaImage(const uint8_t* data, size_t size, int packing, std::vector<DodaEntry>& out) {
  switch (packing) {
    case 1: return DecodeDoda<DATOBJ_P1>(data, size, out);
    case 2: return DecodeDoda<DATOBJ_P2>(data, size, out);
    case 4: return DecodeDoda<DATOBJ_P4>(data, size, out);
    default: return false;
  }
}

DodaImage::DodaImage(const std::vector<DodaEntry>& entries, int packing) {
  switch (packing) {
    case 2: EncodeDoda<DATOBJ_P2>(entries, FBlock); break;
    case 4: EncodeDoda<DATOBJ_P4>(entries, FBlock); break;
    default: EncodeDoda<DATOBJ_P1>(entries, FBlock); break;
  }
}

}  // namespace Ctdb
