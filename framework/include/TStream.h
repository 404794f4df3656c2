// TStream: the framework's abstract byte stream (framework layer).
#pragma once

#include <cstdint>

namespace fw {

enum TSeekOrigin : uint8_t { soBeginning, soCurrent, soEnd };
/// Legacy word forms of the seek origins.
inline constexpr uint16_t soFromBeginning = 0;
inline constexpr uint16_t soFromCurrent = 1;
inline constexpr uint16_t soFromEnd = 2;

/// A readable/writable, seekable sequence of bytes. Not copyable.
class TStream {
 public:
  TStream() = default;
  TStream(const TStream&) = delete;
  TStream& operator=(const TStream&) = delete;
  virtual ~TStream() = default;

  // ---- descendants must implement ----
  /// Reads up to `count` bytes into `buffer`; returns the number read (0 at or past the end,
  /// never an error for a short read).
  virtual int64_t Read(void* buffer, int64_t count) = 0;
  /// Writes `count` bytes; returns the number written.
  virtual int64_t Write(const void* buffer, int64_t count) = 0;
  /// Moves the position; returns the new absolute position.
  virtual int64_t Seek(int64_t offset, TSeekOrigin origin) = 0;

  // ---- descendants may override ----
  /// Generic: seek to the end, note the position, seek back.
  virtual int64_t Size();
  /// No-op in the base stream.
  virtual void SetSize(int64_t newSize);
  /// Finishes now what the stream would otherwise leave to its destructor, so that errors reach
  /// the caller (a blob stream hands its written content to its dataset here). The stream stays
  /// usable. Nothing in the base stream.
  virtual void Commit() {}

  /// `Seek(0, soCurrent)` / `Seek(p, soBeginning)`.
  int64_t Position() { return Seek(0, soCurrent); }
  void SetPosition(int64_t pos) { Seek(pos, soBeginning); }
  /// Read/Write until `count` bytes moved; EReadError / EWriteError when fewer were.
  void ReadBuffer(void* buffer, int64_t count);
  void WriteBuffer(const void* buffer, int64_t count);
  /// `count == 0` copies all of `source` from its beginning (its position is set to 0 first);
  /// `count > 0` copies `count` bytes from its current position (EReadError when it has fewer).
  /// Returns the number of bytes copied.
  int64_t CopyFrom(TStream& source, int64_t count);
};

}  // namespace fw
