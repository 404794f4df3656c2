// RecordCodec: the stored form of fixed-length records (engine, private): runs of zero bytes,
// which padded text fields and the slack at a record's end are mostly made of, take one byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cte {

// A stored record is a sequence of tokens. A token byte t below 0x80 is followed by t + 1 bytes
// copied as they are; a token byte t of 0x80 or more stands for (t - 0x80) + 1 zero bytes. The
// zero bytes at the end of the record are not stored at all: decoding fills the record up to
// its length with zeros. Runs of one or two zero bytes stay inside the copied bytes (a token
// would save nothing).
class RecordCodec {
 public:
  // Appends the stored form of the n bytes at rec to out (cleared first).
  static void Encode(const uint8_t* rec, size_t n, std::vector<uint8_t>& out);
  // Decodes the stored form (size bytes at data) into exactly reclen bytes at out. Returns
  // false, with out untouched, when the stored form is malformed: a token that runs past the
  // input or past reclen.
  static bool Decode(const uint8_t* data, size_t size, uint8_t* out, size_t reclen);
};

}  // namespace cte
