// ConnectionOptions: alignment names as the tool's --alignment option takes them (tools layer).
#include "ConnectionOptions.h"

#include <array>

#include "StringUtils.h"
#include "ToolError.h"

namespace ctt {

CTDbIntf::TLoadAlignment ParseAlignment(std::string_view name) {
  static constexpr std::array<const char*, CTDbIntf::kVariantCount> kNames{
      "byte", "word", "dword", "bytemon", "bytered", "bytecli"};
  std::string_view bare = name;
  if (bare.size() > 2 && fw::SameText(bare.substr(0, 2), "la")) bare.remove_prefix(2);
  for (std::size_t i = 0; i < kNames.size(); ++i)
    if (fw::SameText(bare, kNames[i])) return static_cast<CTDbIntf::TLoadAlignment>(i);
  throw UsageError("unknown alignment '" + std::string(name) +
                   "' (known: byte, word, dword, bytemon, bytered, bytecli)");
}

}  // namespace ctt
