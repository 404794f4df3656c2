// TFileStream: a stream over a POSIX file descriptor.
#include "TFileStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Exception.h"

namespace fw {

TFileStream::TFileStream(const std::string& fileName, uint16_t mode) : FFileName(fileName) {
  if (mode == fmCreate || (mode & 0xFF00) == fmCreate) {
    FHandle = ::open(fileName.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (FHandle < 0) throw EFCreateError("Cannot create file \"" + fileName + "\": " + std::strerror(errno));
    return;
  }
  const int access = (mode & 3) == fmOpenWrite ? O_WRONLY : ((mode & 3) == fmOpenReadWrite ? O_RDWR : O_RDONLY);
  FHandle = ::open(fileName.c_str(), access | O_CLOEXEC);
  if (FHandle < 0) throw EFOpenError("Cannot open file \"" + fileName + "\": " + std::strerror(errno));
}

TFileStream::~TFileStream() {
  if (FHandle >= 0) ::close(FHandle);
}

int64_t TFileStream::Read(void* buffer, int64_t count) {
  if (count <= 0) return 0;
  ssize_t n;
  do n = ::read(FHandle, buffer, static_cast<std::size_t>(count));
  while (n < 0 && errno == EINTR);
  return n < 0 ? 0 : n;
}

int64_t TFileStream::Write(const void* buffer, int64_t count) {
  if (count <= 0) return 0;
  ssize_t n;
  do n = ::write(FHandle, buffer, static_cast<std::size_t>(count));
  while (n < 0 && errno == EINTR);
  return n < 0 ? 0 : n;
}

int64_t TFileStream::Seek(int64_t offset, TSeekOrigin origin) {
  const int whence = origin == soBeginning ? SEEK_SET : (origin == soCurrent ? SEEK_CUR : SEEK_END);
  const off_t pos = ::lseek(FHandle, offset, whence);
  if (pos < 0) throw EStreamError("Cannot seek in \"" + FFileName + "\": " + std::strerror(errno));
  return pos;
}

void TFileStream::SetSize(int64_t newSize) {
  if (::ftruncate(FHandle, newSize) != 0)
    throw EStreamError("Cannot resize \"" + FFileName + "\": " + std::strerror(errno));
  if (Position() > newSize) SetPosition(newSize);
}

}  // namespace fw
