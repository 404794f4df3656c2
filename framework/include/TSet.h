// TSet: the framework's "set of enumeration" value type (framework layer).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <vector>

namespace fw {

/// A set of members of the unscoped enumeration `E` whose ordinals lie in 0..255, kept as a
/// 256-bit mask (the range of a set in the framework). A value type: cheap to copy, compared by
/// content, usable in constant expressions:
///
///     constexpr TSet<TDataSetState> dsEditModes{dsEdit, dsInsert, dsSetKey};
///     if (dsEditModes.Contains(State())) ...
///
/// Ordinals outside 0..255 are a programming error; `Include`/`Contains` ignore them.
template <typename E>
class TSet {
  static_assert(std::is_enum_v<E>, "TSet is a set of enumeration members");

 public:
  constexpr TSet() = default;
  constexpr TSet(std::initializer_list<E> members) {
    for (E m : members) Include(m);
  }

  /// Builds a set from a mask of the ordinals 0..63 (bit n = ordinal n), the form used by
  /// property tables and form files.
  static constexpr TSet FromMask(uint64_t mask) {
    TSet s;
    s.FWords[0] = mask;
    return s;
  }
  /// The ordinals 0..63 as a mask (bit n = ordinal n); higher ordinals are not represented.
  constexpr uint64_t Mask() const { return FWords[0]; }

  constexpr bool Contains(E m) const {
    const auto o = Ordinal(m);
    return o < 256 && (FWords[o / 64] >> (o % 64) & 1u) != 0;
  }
  constexpr TSet& Include(E m) {
    const auto o = Ordinal(m);
    if (o < 256) FWords[o / 64] |= uint64_t{1} << (o % 64);
    return *this;
  }
  constexpr TSet& Exclude(E m) {
    const auto o = Ordinal(m);
    if (o < 256) FWords[o / 64] &= ~(uint64_t{1} << (o % 64));
    return *this;
  }
  constexpr void Clear() { FWords = {}; }
  constexpr bool IsEmpty() const { return FWords == std::array<uint64_t, 4>{}; }
  /// Number of members.
  constexpr int Count() const {
    int n = 0;
    for (uint64_t w : FWords)
      for (; w != 0; w &= w - 1) ++n;
    return n;
  }
  /// Members in ascending ordinal order.
  std::vector<E> Members() const {
    std::vector<E> out;
    for (unsigned o = 0; o < 256; ++o)
      if (FWords[o / 64] >> (o % 64) & 1u) out.push_back(static_cast<E>(o));
    return out;
  }

  /// Union, difference and intersection, as `+`, `-` and `*` in the framework.
  constexpr TSet operator+(const TSet& o) const { return Combine(o, [](uint64_t a, uint64_t b) { return a | b; }); }
  constexpr TSet operator-(const TSet& o) const { return Combine(o, [](uint64_t a, uint64_t b) { return a & ~b; }); }
  constexpr TSet operator*(const TSet& o) const { return Combine(o, [](uint64_t a, uint64_t b) { return a & b; }); }
  constexpr TSet& operator+=(const TSet& o) { return *this = *this + o; }
  constexpr TSet& operator-=(const TSet& o) { return *this = *this - o; }
  constexpr TSet& operator*=(const TSet& o) { return *this = *this * o; }
  /// True when every member of this set is in `o` (`<=` in the framework).
  constexpr bool SubsetOf(const TSet& o) const { return (*this - o).IsEmpty(); }
  constexpr bool operator==(const TSet& o) const = default;

 private:
  static constexpr unsigned Ordinal(E m) {
    return static_cast<unsigned>(static_cast<std::underlying_type_t<E>>(m));
  }
  template <typename Op>
  constexpr TSet Combine(const TSet& o, Op op) const {
    TSet r;
    for (std::size_t i = 0; i < FWords.size(); ++i) r.FWords[i] = op(FWords[i], o.FWords[i]);
    return r;
  }

  std::array<uint64_t, 4> FWords{};
};

}  // namespace fw
