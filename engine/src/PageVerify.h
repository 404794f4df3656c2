// PageVerify: walks every page of an engine file in a child process, so that a damaged page
// ends the child instead of the caller.
#pragma once

#include <string>

namespace cte {

// Reads the LMDB file at path from a forked child: every named database and the free list,
// every key and value byte, and checks each database's entry count against what the walk
// found. Throws Fail: FNOP_ERR when the file is missing, CT_EDAMAGED when the walk fails, finds
// a count that does not match, or the child dies on a damaged page (LMDB trusts its pages on
// the normal path). Opens the file read-only without its lock file; the caller should hold the
// file exclusively, or the walk may see a write half-done.
void VerifyPages(const std::string& path);

}  // namespace cte
