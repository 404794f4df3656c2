// FindFirst / FindNext / FindClose: the files of a directory that match a mask (framework layer).
#pragma once

#include <memory>
#include <string>

namespace fw {

/// Attribute bits of a search. Only the directory bit is told apart on this platform.
constexpr int faDirectory = 0x10;
constexpr int faAnyFile = 0x3F;

struct SearchHandle;

/// One search in progress and the entry it found last.
struct TSearchRec {
  TSearchRec();
  ~TSearchRec();
  TSearchRec(TSearchRec&&) noexcept;
  TSearchRec& operator=(TSearchRec&&) noexcept;

  std::string Name;  ///< The entry's name, without directory.
  int Attr = 0;      ///< faDirectory for a directory, else 0.
  std::unique_ptr<SearchHandle> FindHandle;
};

/// Starts a search for the entries of the directory part of `path` (the current directory when
/// it has none) whose names match its file-name part, a mask with "*" and "?". Directories are
/// found only when `attr` has faDirectory; "." and ".." never. Returns 0 with the first entry in
/// `rec`, or an errno value (ENOENT when nothing matches or the directory does not exist).
int FindFirst(const std::string& path, int attr, TSearchRec& rec);
/// The next matching entry in `rec`: 0, or ENOENT after the last.
int FindNext(TSearchRec& rec);
/// Ends the search (also done when `rec` goes away); safe to call twice.
void FindClose(TSearchRec& rec);

}  // namespace fw
