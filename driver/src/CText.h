// CText: text arguments for the engine's calls, which take `char*` but never write through it.
#pragma once

#include <string>

namespace Ctdb {

/// The text of `s` as the engine's `char*` parameters want it; the engine only reads it.
inline char* CText(const std::string& s) { return const_cast<char*>(s.c_str()); }

}  // namespace Ctdb
