// The library variants of the binding layer: one shared library file per record alignment.
#pragma once

#include <cstddef>
#include <cstdint>

namespace CTDbIntf {

/// Selects the storage library variant, and with it the packing of the definition records
/// passed to it. The first argument of every call wrapper. Ordinals are fixed (0 to 5).
enum TLoadAlignment : std::uint8_t {
  laByte,     ///< libctstd32b.so: byte-packed definition records
  laWord,     ///< libctstd32w.so: word-packed
  laDWord,    ///< libctstd32d.so: double-word-packed
  laByteMon,  ///< libctreebm.so: a further byte-packed build
  laByteRed,  ///< libctreebr.so: a further byte-packed build
  laByteCli   ///< libctreebc.so: a further byte-packed build
};

/// Number of members of TLoadAlignment.
inline constexpr std::size_t kVariantCount = 6;

}  // namespace CTDbIntf
