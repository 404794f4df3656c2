// TMemoryStream: a stream over a growable memory block (framework layer).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "TStream.h"

namespace fw {

/// A stream whose bytes live in memory it owns. The position may be placed beyond the end
/// (reading there returns 0); writing there grows the stream and zero-fills the gap.
class TMemoryStream : public TStream {
 public:
  TMemoryStream() = default;

  /// The bytes (valid until the next call that changes the size or capacity).
  void* Memory() { return FMemory.get(); }
  const void* Memory() const { return FMemory.get(); }
  int64_t Capacity() const { return FCapacity; }

  int64_t Read(void* buffer, int64_t count) override;
  int64_t Write(const void* buffer, int64_t count) override;
  /// Any resulting position >= 0 is accepted; a negative one raises EStreamError.
  int64_t Seek(int64_t offset, TSeekOrigin origin) override;
  int64_t Size() override { return FSize; }
  /// Keeps the first min(old, new) bytes, zero-fills growth, clamps the position to the size.
  void SetSize(int64_t newSize) override;

  /// Size 0, position 0, memory released.
  void Clear();
  /// Replaces the contents by all of `source` (its position is set to 0 first); the own
  /// position is unchanged.
  void LoadFromStream(TStream& source);
  /// Writes all bytes regardless of the position.
  void SaveToStream(TStream& dest) const;
  /// EFOpenError / EFCreateError when the file cannot be opened / created.
  void LoadFromFile(const std::string& fileName);
  void SaveToFile(const std::string& fileName) const;

 private:
  void SetCapacity(int64_t newCapacity);

  std::unique_ptr<uint8_t[]> FMemory;
  int64_t FSize = 0;
  int64_t FCapacity = 0;
  int64_t FPosition = 0;
};

}  // namespace fw
