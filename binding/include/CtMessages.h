// The binding layer's message table: one text per error number, keyed by 30000 + number.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace CTDbIntf {

/// Offset of the message numbers: the message of error number N has number kMessageBase + N.
inline constexpr std::int32_t kMessageBase = 30000;

/// Package message numbers the binding itself raises.
inline constexpr std::int32_t kMsgProcNotFound = 31110;  ///< "Procedure %s can not be found in %s"
inline constexpr std::int32_t kMsgCannotLoad = 31111;    ///< "Unabled to load %s"

/// Returns the text of message number `ident` (30000 + error number), or nullopt when the table
/// holds none. Texts of the package's own numbers may contain "%s" placeholders; they are
/// returned as stored. The view refers to static storage.
std::optional<std::string_view> CtMessage(std::int32_t ident);

}  // namespace CTDbIntf
