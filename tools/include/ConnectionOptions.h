// ConnectionOptions: the connection settings the tool takes from its command line (tools layer).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "TLoadAlignment.h"

namespace ctt {

/// The published settings of the connection component, each optional: a setting left empty keeps
/// the value the form file gives it or, without a form file, the component's default. The names
/// follow the component's properties.
struct ConnectionOptions {
  /// A text form file to read the connection from, and the name of the connection component in
  /// it (empty: the first connection component of the form).
  std::string FormFile;
  std::string FormComponent;

  std::optional<CTDbIntf::TLoadAlignment> Alignment;
  std::optional<bool> NullKeys;
  std::optional<std::int16_t> MaxBuffers;
  std::optional<std::int16_t> MaxFiles;
  std::optional<std::int16_t> MaxSectors;
  std::optional<std::string> UserName;
  std::optional<std::string> Password;
  std::optional<std::string> ServerName;
  std::optional<std::string> DataDir;
  std::optional<std::string> TempDir;
  std::optional<std::int32_t> MaxIndexKey;
  std::optional<std::string> DataExt;
  std::optional<std::string> IndexExt;
  std::optional<std::string> SuperFileExt;
};

/// The alignment named `name`: byte, word, dword, bytemon, bytered, bytecli (case-insensitive,
/// an "la" prefix allowed: "laWord"). Raises UsageError listing the names for anything else.
CTDbIntf::TLoadAlignment ParseAlignment(std::string_view name);

}  // namespace ctt
