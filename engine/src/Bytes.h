// Bytes: a view of bytes the storage hands out or takes (keys, values), owned elsewhere.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>

namespace cte {

// A length and a pointer, never owning. Bytes a read returns stay valid until the transaction
// that gave them ends or writes; bytes given to a write need to live only during the call.
struct Bytes {
  size_t size = 0;
  const void* data = nullptr;
};

// The bytes of s (valid while s is unchanged).
inline Bytes BytesOf(const std::string& s) { return Bytes{s.size(), s.data()}; }
// The bytes of a C string without its terminator.
inline Bytes BytesOf(const char* s) { return Bytes{std::strlen(s), s}; }

}  // namespace cte
