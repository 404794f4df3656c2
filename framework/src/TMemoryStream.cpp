// TMemoryStream: a stream over a growable memory block.
#include "TMemoryStream.h"

#include <algorithm>
#include <cstring>

#include "Exception.h"
#include "TFileStream.h"

namespace fw {

int64_t TMemoryStream::Read(void* buffer, int64_t count) {
  if (count <= 0 || FPosition >= FSize) return 0;
  const int64_t n = std::min(count, FSize - FPosition);
  std::memcpy(buffer, FMemory.get() + FPosition, static_cast<std::size_t>(n));
  FPosition += n;
  return n;
}

int64_t TMemoryStream::Write(const void* buffer, int64_t count) {
  if (count <= 0) return 0;
  const int64_t end = FPosition + count;
  if (end > FSize) {
    const int64_t oldSize = FSize;
    if (end > FCapacity) SetCapacity(end);
    // Bytes between the old end and the write position are zeroed.
    if (FPosition > oldSize) std::memset(FMemory.get() + oldSize, 0, static_cast<std::size_t>(FPosition - oldSize));
    FSize = end;
  }
  std::memcpy(FMemory.get() + FPosition, buffer, static_cast<std::size_t>(count));
  FPosition = end;
  return count;
}

int64_t TMemoryStream::Seek(int64_t offset, TSeekOrigin origin) {
  const int64_t base = origin == soBeginning ? 0 : (origin == soCurrent ? FPosition : FSize);
  if (base + offset < 0) throw EStreamError("Seek before the beginning of a memory stream");
  FPosition = base + offset;
  return FPosition;
}

void TMemoryStream::SetCapacity(int64_t newCapacity) {
  // Grow in 4 KiB blocks and by at least a quarter, so that appending is amortised.
  int64_t cap = std::max(newCapacity, FCapacity + FCapacity / 4);
  cap = (cap + 4095) / 4096 * 4096;
  std::unique_ptr<uint8_t[]> mem(new uint8_t[static_cast<std::size_t>(cap)]);
  if (FSize > 0) std::memcpy(mem.get(), FMemory.get(), static_cast<std::size_t>(FSize));
  FMemory = std::move(mem);
  FCapacity = cap;
}

void TMemoryStream::SetSize(int64_t newSize) {
  if (newSize < 0) throw EStreamError("Negative memory stream size");
  if (newSize > FCapacity) SetCapacity(newSize);
  if (newSize > FSize) std::memset(FMemory.get() + FSize, 0, static_cast<std::size_t>(newSize - FSize));
  FSize = newSize;
  FPosition = std::min(FPosition, FSize);
}

void TMemoryStream::Clear() {
  FMemory.reset();
  FSize = FCapacity = FPosition = 0;
}

void TMemoryStream::LoadFromStream(TStream& source) {
  source.SetPosition(0);
  const int64_t n = source.Size();
  const int64_t pos = FPosition;
  SetSize(n);
  if (n > 0) source.ReadBuffer(FMemory.get(), n);
  FPosition = pos;
}

void TMemoryStream::SaveToStream(TStream& dest) const {
  if (FSize > 0) dest.WriteBuffer(FMemory.get(), FSize);
}

void TMemoryStream::LoadFromFile(const std::string& fileName) {
  TFileStream file(fileName, fmOpenRead);
  LoadFromStream(file);
}

void TMemoryStream::SaveToFile(const std::string& fileName) const {
  TFileStream file(fileName, fmCreate);
  SaveToStream(file);
}

}  // namespace fw
