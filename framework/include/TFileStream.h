// TFileStream: a stream over an operating-system file (framework layer).
#pragma once

#include <cstdint>
#include <string>

#include "TStream.h"

namespace fw {

/// Open modes: one of fmOpenRead/fmOpenWrite/fmOpenReadWrite, or fmCreate (create or truncate,
/// read-write). Share-mode bits are accepted and ignored (POSIX files are not share-locked).
inline constexpr uint16_t fmOpenRead = 0x0000;
inline constexpr uint16_t fmOpenWrite = 0x0001;
inline constexpr uint16_t fmOpenReadWrite = 0x0002;
inline constexpr uint16_t fmShareExclusive = 0x0010;
inline constexpr uint16_t fmShareDenyWrite = 0x0020;
inline constexpr uint16_t fmShareDenyNone = 0x0040;
inline constexpr uint16_t fmCreate = 0xFF00;

class TFileStream : public TStream {
 public:
  /// Opens or creates `fileName`; raises EFCreateError / EFOpenError naming the file and the
  /// system's reason.
  TFileStream(const std::string& fileName, uint16_t mode);
  ~TFileStream() override;

  const std::string& FileName() const { return FFileName; }

  int64_t Read(void* buffer, int64_t count) override;
  int64_t Write(const void* buffer, int64_t count) override;
  /// Raises EStreamError when the position would be negative.
  int64_t Seek(int64_t offset, TSeekOrigin origin) override;
  /// Truncates or extends the file; EStreamError on failure.
  void SetSize(int64_t newSize) override;

 private:
  std::string FFileName;
  int FHandle = -1;
};

}  // namespace fw
