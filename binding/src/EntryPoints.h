// The binding layer's table of entry points: one slot per bound name, shared by all variants.
#pragma once

#include <cstdint>
#include <span>

#include "ctisam.h"

namespace CTDbIntf {

/// One function pointer per entry point, typed by the engine header's prototype, plus the
/// address of the exported error variable (bound like the functions; nothing reads it) and the
/// Perform slot that is never bound. Filled by the variant loaded last; null until a variant
/// binds it. The slots come from EntryPointList.inc, which binding/GenerateEntryPoints.cmake
/// writes from the engine header (a test checks that it is current).
struct TEntryPoints {
#define CT_BIND(name) decltype(&::name) name = nullptr;
#define CT_BIND_AGAIN(name)
#include "EntryPointList.inc"
#undef CT_BIND
#undef CT_BIND_AGAIN
  std::int16_t (*Perform)(std::int16_t) = nullptr;  // never bound: stays null
};

/// The one shared table all wrappers call through.
extern TEntryPoints EntryPoints;

/// One lookup of the binding: the exported name and how its address is stored in the table.
struct TBinding {
  const char* Name;
  void (*Store)(void* address);
};

/// The lookups in binding order: 169 of them, 168 distinct names ("DELRFIL" twice, into one
/// slot). The Perform slot has no lookup.
std::span<const TBinding> BindingOrder();

}  // namespace CTDbIntf
