// TStream: buffer loops, size and copying on top of Read/Write/Seek.
#include "TStream.h"

#include <algorithm>
#include <vector>

#include "Exception.h"

namespace fw {

int64_t TStream::Size() {
  const int64_t pos = Seek(0, soCurrent);
  const int64_t end = Seek(0, soEnd);
  Seek(pos, soBeginning);
  return end;
}

void TStream::SetSize(int64_t) {}

void TStream::ReadBuffer(void* buffer, int64_t count) {
  int64_t done = 0;
  while (done < count) {
    const int64_t n = Read(static_cast<uint8_t*>(buffer) + done, count - done);
    if (n <= 0) throw EReadError("Stream read error: " + std::to_string(done) + " of " + std::to_string(count) + " bytes");
    done += n;
  }
}

void TStream::WriteBuffer(const void* buffer, int64_t count) {
  int64_t done = 0;
  while (done < count) {
    const int64_t n = Write(static_cast<const uint8_t*>(buffer) + done, count - done);
    if (n <= 0) throw EWriteError("Stream write error: " + std::to_string(done) + " of " + std::to_string(count) + " bytes");
    done += n;
  }
}

int64_t TStream::CopyFrom(TStream& source, int64_t count) {
  if (count == 0) {
    source.SetPosition(0);
    count = source.Size();
  }
  std::vector<uint8_t> buf(static_cast<std::size_t>(std::min<int64_t>(count, 65536)));
  int64_t left = count;
  while (left > 0) {
    const int64_t n = std::min<int64_t>(left, static_cast<int64_t>(buf.size()));
    source.ReadBuffer(buf.data(), n);
    WriteBuffer(buf.data(), n);
    left -= n;
  }
  return count;
}

}  // namespace fw
