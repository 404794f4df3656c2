// KeyBuilder: segment transforms (integers big-endian with the sign flipped, floats by their
// order-preserving bit transform, BCD by sign, exponent and digits, text padded and optionally
// upper-cased, descending inverted).
#include "KeyBuilder.h"

#include <cstring>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

namespace {

uint64_t LoadLE(const uint8_t* p, int n) {
  uint64_t v = 0;
  for (int i = n - 1; i >= 0; --i) v = (v << 8) | p[i];
  return v;
}

void StoreBE(uint64_t v, int n, uint8_t* out) {
  for (int i = n - 1; i >= 0; --i) {
    out[i] = static_cast<uint8_t>(v);
    v >>= 8;
  }
}

uint32_t PrefixLen(const uint8_t* p, int width) { return static_cast<uint32_t>(LoadLE(p, width)); }

constexpr int kBcdLen = 10;

// A 10-byte BCD (precision, sign bit 7 and places in bits 0-5, 16 digits packed from byte 2) as
// 10 bytes whose order is value order: a class byte (0x40 negative, 0x80 zero, 0xC0 positive),
// the decimal exponent of the first significant digit biased by 128, then the significant
// digits from that one on. Negative values invert the exponent and digits, so that a larger
// magnitude sorts first. Digits a precision claims beyond the 16 stored count as zeros.
void BcdKey(const uint8_t* src, uint8_t* out) {
  int digits[16];
  for (int k = 0; k < 16; ++k) digits[k] = (k % 2 == 0 ? src[2 + k / 2] >> 4 : src[2 + k / 2] & 0x0F) % 10;
  const int precision = src[0];
  const int places = src[1] & 0x3F;
  const int stored = precision < 16 ? precision : 16;
  int first = 0;
  while (first < stored && digits[first] == 0) ++first;
  std::memset(out, 0, kBcdLen);
  if (first == stored) {
    out[0] = 0x80;
    return;
  }
  const bool negative = (src[1] & 0x80) != 0;
  int exponent = precision - places - first;
  exponent = exponent < -127 ? -127 : exponent > 127 ? 127 : exponent;
  out[0] = negative ? 0x40 : 0xC0;
  out[1] = static_cast<uint8_t>(exponent + 128);
  for (int k = first; k < stored; ++k)
    out[2 + (k - first) / 2] |= static_cast<uint8_t>((k - first) % 2 == 0 ? digits[k] << 4 : digits[k]);
  if (negative)
    for (int i = 1; i < kBcdLen; ++i) out[i] = static_cast<uint8_t>(~out[i]);
}

}  // namespace

KeyLayout KeyLayout::Compile(const IndexDef& ix, const std::vector<FieldDef>& fields) {
  KeyLayout k;
  k.fields_ = &fields;
  k.keylen_ = ix.keylen;
  k.dup_ = ix.dup != 0;
  k.nulkey_ = ix.nulkey != 0;
  k.empchr_ = static_cast<uint8_t>(ix.empchr);
  k.altseq_ = ix.altseq;
  uint32_t off = 0;
  for (const FieldDef& f : fields) {
    if (IsVariable(f.type)) break;
    k.fixedOffsets_.push_back(off);
    off += f.len;
  }
  for (const SegDef& sd : ix.segs) {
    Seg s;
    s.offset = sd.offset;
    s.length = sd.length;
    s.desc = (sd.mode & DSCSEG) != 0;
    s.alt = (sd.mode & ALTSEG) != 0 && !ix.altseq.empty();
    int m = sd.mode & ~(DSCSEG | ALTSEG);
    s.upper = m == UREGSEG || m == UVARSEG || m == USCHSEG || m == UVSCHSEG;
    switch (m) {
      case INTSEG: s.xform = kUInt; break;
      case SGNSEG: s.xform = kSInt; break;
      case FLTSEG: s.xform = kFloat; break;
      case SRLSEG:
        s.xform = kUInt;
        k.serialOffset_ = sd.offset;
        break;
      case VARSEG:
      case UVARSEG:
      case SCHSEG:
      case USCHSEG:
      case VSCHSEG:
      case UVSCHSEG: {
        if (fields.empty()) Throw(RNOT_ERR);
        if (sd.offset >= static_cast<int>(fields.size())) Throw(CT_EBADDEF);
        s.byField = true;
        if (m == VARSEG || m == UVARSEG) break;
        switch (fields[sd.offset].type) {
          case CT_INT2:
          case CT_INT4:
          case CT_MONEY:
          case CT_DATE: s.xform = kSInt; break;
          case CT_INT2U:
          case CT_INT4U:
          case CT_TIME: s.xform = kUInt; break;
          case CT_SFLOAT:
          case CT_DFLOAT: s.xform = kFloat; break;
          case CT_TIMES: s.xform = kStamp; break;
          case CT_FPSTRING:
          case CT_PSTRING: s.xform = kPStr1; break;
          case CT_F2STRING:
          case CT_2STRING: s.xform = kPStr2; break;
          case CT_F4STRING:
          case CT_4STRING: s.xform = kPStr4; break;
          case CT_STRING: s.xform = kZStr; break;
          case CT_BCDOLD:
          case CT_BCD: s.xform = kBcd; break;
          default: s.xform = kBytes; break;
        }
        break;
      }
      default: break;
    }
    k.segs_.push_back(s);
  }
  return k;
}

size_t KeyLayout::FieldOffset(int field, const uint8_t* rec, size_t reclen, size_t& width) const {
  const std::vector<FieldDef>& fields = *fields_;
  if (field < static_cast<int>(fixedOffsets_.size())) {
    width = fields[field].len;
    return fixedOffsets_[field];
  }
  // Fields after a variable-length one start where the actual value before them ends.
  size_t off = fixedOffsets_.empty() ? 0 : fixedOffsets_.back() + fields[fixedOffsets_.size() - 1].len;
  for (int i = static_cast<int>(fixedOffsets_.size()); i <= field; ++i) {
    const FieldDef& f = fields[i];
    size_t w = f.len;
    if (off < reclen) {
      switch (f.type) {
        case CT_STRING: {
          const void* z = std::memchr(rec + off, 0, reclen - off);
          w = z ? static_cast<const uint8_t*>(z) - (rec + off) + 1 : reclen - off;
          break;
        }
        case CT_PSTRING: w = 1 + (off + 1 <= reclen ? PrefixLen(rec + off, 1) : 0); break;
        case CT_2STRING: w = 2 + (off + 2 <= reclen ? PrefixLen(rec + off, 2) : 0); break;
        case CT_4STRING: w = 4 + (off + 4 <= reclen ? PrefixLen(rec + off, 4) : 0); break;
        default: break;
      }
    }
    if (i == field) {
      width = w;
      return off;
    }
    off += w;
  }
  width = 0;
  return off;
}

void KeyLayout::Emit(const Seg& s, const uint8_t* src, size_t avail, uint8_t* out,
                     bool& allEmpty) const {
  const int n = s.length;
  uint8_t tmp[8];
  uint8_t tmp10[kBcdLen];
  const uint8_t* from = src;
  size_t have = avail;
  bool numeric = false;
  switch (s.xform) {
    case kUInt:
    case kSInt:
    case kFloat:
      if (avail >= static_cast<size_t>(n) && n <= 8) {
        uint64_t v = LoadLE(src, n);
        if (s.xform == kSInt) {
          v ^= uint64_t{1} << (8 * n - 1);
        } else if (s.xform == kFloat && (n == 4 || n == 8)) {
          uint64_t sign = uint64_t{1} << (8 * n - 1);
          uint64_t mask = n == 8 ? ~uint64_t{0} : 0xFFFFFFFFu;
          v = (v & sign) ? (~v & mask) : (v | sign);
        }
        StoreBE(v, n, tmp);
        from = tmp;
        have = n;
        numeric = true;
      }
      break;
    case kStamp:
      if (avail >= 8 && n >= 8) {
        StoreBE(LoadLE(src, 4) ^ 0x80000000u, 4, tmp);
        StoreBE(LoadLE(src + 4, 4) ^ 0x80000000u, 4, tmp + 4);
        from = tmp;
        have = 8;
        numeric = true;
      }
      break;
    case kPStr1:
    case kPStr2:
    case kPStr4: {
      int w = s.xform == kPStr1 ? 1 : s.xform == kPStr2 ? 2 : 4;
      if (avail >= static_cast<size_t>(w)) {
        size_t len = PrefixLen(src, w);
        from = src + w;
        have = len < avail - w ? len : avail - w;
      } else {
        have = 0;
      }
      break;
    }
    case kZStr: {
      const void* z = std::memchr(src, 0, avail);
      if (z) have = static_cast<const uint8_t*>(z) - src;
      break;
    }
    case kBcd:
      if (avail >= static_cast<size_t>(kBcdLen) && n >= kBcdLen) {
        BcdKey(src, tmp10);
        from = tmp10;
        have = kBcdLen;
        numeric = true;
      }
      break;
    case kBytes: break;
  }
  size_t take = have < static_cast<size_t>(n) ? have : n;
  for (size_t i = 0; i < take; ++i) {
    uint8_t b = from[i];
    if (s.upper && !numeric && b >= 'a' && b <= 'z') b = static_cast<uint8_t>(b - 32);
    out[i] = b;
  }
  std::memset(out + take, empchr_, n - take);
  for (int i = 0; i < n && allEmpty; ++i) allEmpty = out[i] == empchr_;
  // The padding is weighed too, so that a short value sorts as its padded form would.
  if (s.alt && !numeric)
    for (int i = 0; i < n; ++i) out[i] = altseq_[out[i]];
  if (s.desc)
    for (int i = 0; i < n; ++i) out[i] = static_cast<uint8_t>(~out[i]);
}

bool KeyLayout::Build(const uint8_t* rec, size_t reclen, uint32_t pos, uint8_t* out) const {
  const int dataLen = keylen_ - (dup_ ? 4 : 0);
  int at = 0;
  bool allEmpty = true;
  for (const Seg& s : segs_) {
    size_t off, width;
    if (s.byField) {
      off = FieldOffset(s.offset, rec, reclen, width);
    } else {
      off = s.offset;
      width = s.length;
    }
    size_t avail = off < reclen ? reclen - off : 0;
    if (width < avail) avail = width;
    Emit(s, rec + (off < reclen ? off : 0), avail, out + at, allEmpty);
    at += s.length;
  }
  std::memset(out + at, empchr_, dataLen - at);
  if (dup_) StoreBE(pos, 4, out + dataLen);
  return nulkey_ && allEmpty;
}

void KeyLayout::TransformRaw(uint8_t* key) const {
  uint8_t raw[CT_MAXKEYLEN];
  std::memcpy(raw, key, keylen_);
  int at = 0;
  bool allEmpty = true;
  for (const Seg& s : segs_) {
    Emit(s, raw + at, s.length, key + at, allEmpty);
    at += s.length;
  }
}

}  // namespace cte
