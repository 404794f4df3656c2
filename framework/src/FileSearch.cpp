// FindFirst / FindNext / FindClose over POSIX directory reading and fnmatch.
#include "FileSearch.h"

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include <cerrno>

#include "StringUtils.h"

namespace fw {

struct SearchHandle {
  DIR* Dir = nullptr;
  std::string Directory;  // with its trailing delimiter, "" for the current directory
  std::string Mask;
  int Attr = 0;
  ~SearchHandle() {
    if (Dir != nullptr) closedir(Dir);
  }
};

TSearchRec::TSearchRec() = default;
TSearchRec::~TSearchRec() = default;
TSearchRec::TSearchRec(TSearchRec&&) noexcept = default;
TSearchRec& TSearchRec::operator=(TSearchRec&&) noexcept = default;

namespace {

bool IsDirectory(const SearchHandle& h, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_DIR;
  // Some file systems do not report the type, and a link is judged by what it points to.
  struct stat st {};
  return stat((h.Directory + entry.d_name).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

int FindFirst(const std::string& path, int attr, TSearchRec& rec) {
  FindClose(rec);
  auto handle = std::make_unique<SearchHandle>();
  handle->Directory = ExtractFilePath(path);
  handle->Mask = ExtractFileName(path);
  handle->Attr = attr;
  handle->Dir = opendir(handle->Directory.empty() ? "." : handle->Directory.c_str());
  if (handle->Dir == nullptr) return errno != 0 ? errno : ENOENT;
  rec.FindHandle = std::move(handle);
  const int result = FindNext(rec);
  if (result != 0) FindClose(rec);
  return result;
}

int FindNext(TSearchRec& rec) {
  SearchHandle* h = rec.FindHandle.get();
  if (h == nullptr) return ENOENT;
  while (const dirent* entry = readdir(h->Dir)) {
    const std::string name = entry->d_name;
    if (name == "." || name == ".." || fnmatch(h->Mask.c_str(), name.c_str(), 0) != 0) continue;
    const bool directory = IsDirectory(*h, *entry);
    if (directory && (h->Attr & faDirectory) == 0) continue;
    rec.Name = name;
    rec.Attr = directory ? faDirectory : 0;
    return 0;
  }
  return ENOENT;
}

void FindClose(TSearchRec& rec) { rec.FindHandle.reset(); }

}  // namespace fw
