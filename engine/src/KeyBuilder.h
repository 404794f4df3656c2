// KeyBuilder: turns record images into index keys whose unsigned byte order is value order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Schema.h"

namespace cte {

// An index's segments resolved against the schema once, so that building a key costs no
// lookups. Built by Compile; valid while the IndexDef and the field list it came from are.
class KeyLayout {
 public:
  // Throws Fail RNOT_ERR when a segment names a field and fields is empty, CT_EBADDEF when it
  // names a field number beyond the list.
  static KeyLayout Compile(const IndexDef& ix, const std::vector<FieldDef>& fields);

  int KeyLen() const { return keylen_; }
  bool HasSerial() const { return serialOffset_ >= 0; }
  // Offset of the serial segment's 4-byte value in the record (-1 when none).
  int SerialOffset() const { return serialOffset_; }

  // Writes KeyLen() bytes of key for record rec (reclen bytes) at position pos into out.
  // Returns true when the key is null (only empchr bytes) and the index suppresses null keys.
  bool Build(const uint8_t* rec, size_t reclen, uint32_t pos, uint8_t* out) const;
  // Transforms, in place, a key whose segments hold raw values one after another.
  void TransformRaw(uint8_t* key) const;

 private:
  enum Xform : uint8_t { kBytes, kUInt, kSInt, kFloat, kStamp, kPStr1, kPStr2, kPStr4, kZStr, kBcd };
  struct Seg {
    int offset = 0;  // byte offset in the record, or the field number (byField)
    int length = 0;
    Xform xform = kBytes;
    bool byField = false;
    bool upper = false;
    bool desc = false;
    bool alt = false;  // ALTSEG with a sequence: every byte replaced by its weight
  };
  void Emit(const Seg& s, const uint8_t* src, size_t avail, uint8_t* out, bool& allEmpty) const;
  size_t FieldOffset(int field, const uint8_t* rec, size_t reclen, size_t& width) const;

  std::vector<Seg> segs_;
  const std::vector<FieldDef>* fields_ = nullptr;
  std::vector<uint32_t> fixedOffsets_;  // offsets of the fields before the first variable one
  int keylen_ = 0;
  bool dup_ = false;
  bool nulkey_ = false;
  uint8_t empchr_ = 0;
  std::vector<uint8_t> altseq_;
  int serialOffset_ = -1;
};

}  // namespace cte
