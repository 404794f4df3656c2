// The framework's fixed-width integer names, Currency and TDateTime (framework layer).
#pragma once

#include <cstdint>

namespace fw {

using Byte = uint8_t;
using ShortInt = int8_t;
using Smallint = int16_t;
using Word = uint16_t;
using Integer = int32_t;
using Longint = int32_t;
using Cardinal = uint32_t;
using LongWord = uint32_t;
using Largeint = int64_t;
using Int64 = int64_t;

/// Fixed-point money: the value times 10000 in a 64-bit integer (1.5 is 15000).
using Currency = int64_t;
/// Scale of Currency: 10000 units per whole.
inline constexpr int64_t kCurrencyScale = 10000;

/// Days since 30 December 1899 (day 0); the fraction is the time of day. Negative values count
/// days backwards and the fraction's absolute value is still the time (-1.25 is 29 December 1899,
/// 06:00).
using TDateTime = double;

}  // namespace fw
