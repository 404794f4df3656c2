// The binding layer's library loader: the variants' file names, their load state and handles.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "TLoadAlignment.h"

namespace CTDbIntf {

/// File name of each variant's library, indexed by alignment: "libctstd32b.so", "libctstd32w.so",
/// "libctstd32d.so", "libctreebm.so", "libctreebr.so", "libctreebc.so". A name without a slash is
/// found by the platform loader's search (the executable's RUNPATH first). An application or test
/// may replace a name (for example with a full path) before that variant is loaded.
extern std::array<std::string, kVariantCount> LibraryNames;

/// Whether each variant is loaded and fully bound. All false at start.
extern std::array<bool, kVariantCount> LoadedVariants;

/// The platform loader's handle of each variant, kept as the last load attempt returned it (null
/// after a failed load; left stale after unloading).
extern std::array<void*, kVariantCount> Handles;

/// Makes sure the library of `Alignment` is loaded and its entry points bound into the one table
/// all wrappers call through. When the variant is already loaded this is one flag test.
/// Otherwise loads the file (recording the handle), then looks up every entry point name in a
/// fixed order (169 lookups) and marks the variant loaded.
/// Raises ECtreeException (ErrorCode 0):
///  - message 31111 "Unabled to load <file>" when the file cannot be loaded (missing, not a
///    library, empty name, or an alignment outside TLoadAlignment);
///  - message 31110 "Procedure <name> can not be found in <file>" for the first name the library
///    lacks. The library then stays loaded, the names bound before the failure stay in the table,
///    and the variant stays unloaded, so the next call runs the whole load again.
/// The table is shared by all variants: after a second variant is loaded, every wrapper calls
/// into it, whatever alignment it is given. A process is meant to use one alignment at a time.
void LoadCTreeDLL(TLoadAlignment Alignment);

/// The platform loader's own words on the last library LoadCTreeDLL could not load (which file
/// was missing, which symbol a dependency lacked); empty when the last load succeeded.
const std::string& LastLoaderMessage();

/// Unloads the library of `Alignment` if it is loaded, and marks it unloaded. The ordinal is
/// masked to its low seven bits first; a masked ordinal outside TLoadAlignment does nothing. The
/// handle and the shared entry-point table are left as they are. Never raises.
void UnLoadCTreeDLL(TLoadAlignment Alignment);

/// Number of entry-point lookups performed by this process so far (one per name looked up,
/// successful or not). Lets callers observe that binding happens once per variant.
std::uint64_t EntryPointLookupCount();

}  // namespace CTDbIntf
