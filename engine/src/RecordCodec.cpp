// RecordCodec: encoding and decoding the stored form of fixed-length records.
#include "RecordCodec.h"

#include <cstring>

namespace cte {

namespace {

constexpr size_t kMaxRun = 128;   // bytes one token covers at most
constexpr size_t kMinZeros = 3;   // shorter zero runs are cheaper copied

// The length of the run of zero bytes at rec[i..end), at most kMaxRun.
size_t Zeros(const uint8_t* rec, size_t i, size_t end) {
  size_t z = 0;
  while (i + z < end && z < kMaxRun && rec[i + z] == 0) ++z;
  return z;
}

}  // namespace

void RecordCodec::Encode(const uint8_t* rec, size_t n, std::vector<uint8_t>& out) {
  out.clear();
  size_t end = n;
  while (end > 0 && rec[end - 1] == 0) --end;
  size_t i = 0;
  while (i < end) {
    const size_t zeros = Zeros(rec, i, end);
    if (zeros >= kMinZeros) {
      out.push_back(static_cast<uint8_t>(0x80 + zeros - 1));
      i += zeros;
      continue;
    }
    // Copied bytes up to the next run of zeros worth a token (or the token's limit).
    size_t j = i;
    while (j < end && j - i < kMaxRun && (rec[j] != 0 || Zeros(rec, j, end) < kMinZeros)) ++j;
    out.push_back(static_cast<uint8_t>(j - i - 1));
    out.insert(out.end(), rec + i, rec + j);
    i = j;
  }
}

bool RecordCodec::Decode(const uint8_t* data, size_t size, uint8_t* out, size_t reclen) {
  // The tokens are checked before the first byte is written, so that a malformed value leaves
  // out as it was.
  size_t in = 0, at = 0;
  while (in < size) {
    const uint8_t token = data[in++];
    const size_t count = token >= 0x80 ? token - 0x80u + 1 : token + 1u;
    if (count > reclen - at || (token < 0x80 && count > size - in)) return false;
    if (token < 0x80) in += count;
    at += count;
  }
  in = 0;
  at = 0;
  while (in < size) {
    const uint8_t token = data[in++];
    if (token >= 0x80) {
      const size_t zeros = token - 0x80u + 1;
      std::memset(out + at, 0, zeros);
      at += zeros;
    } else {
      const size_t count = token + 1u;
      std::memcpy(out + at, data + in, count);
      in += count;
      at += count;
    }
  }
  // An empty record may come with no buffer at all.
  if (reclen > at) std::memset(out + at, 0, reclen - at);
  return true;
}

}  // namespace cte
