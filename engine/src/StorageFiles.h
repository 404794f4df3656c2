// StorageFiles: the operations on a storage file as a whole, with the companion files the
// backend keeps beside it (its lock files), for files that are not open.
#pragma once

#include <string>

namespace cte {

// The file's size in bytes, or -1 when it does not exist.
long long FileSize(const std::string& path);
// Removes a file with its companions; true when the file itself was removed.
bool RemoveFile(const std::string& path);
// Renames a file with its companions; throws Fail DCRAT_ERR when the target exists.
void RenameFile(const std::string& from, const std::string& to);
// Puts the file at from (a compacted copy made by Env::CopyCompact) in the place of path, whose
// companions are removed so that the backend makes them anew. Throws Fail CT_EIO.
void ReplaceFile(const std::string& from, const std::string& path);
// Reads every page of the file at path from a forked child: every database and its free space,
// every key and value byte, and checks each database's entry count against what the walk found.
// Throws Fail: FNOP_ERR when the file is missing, CT_EDAMAGED when the walk fails, finds a
// count that does not match, or the child dies on a damaged page. Opens the file read-only
// without its lock file; the caller should hold the file exclusively, or the walk may see a
// write half-done. A backend that cannot walk its files throws NSUP_ERR.
void VerifyFile(const std::string& path);

}  // namespace cte
