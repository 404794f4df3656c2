// The binding layer's table of entry points and the order in which names are bound.
#include "EntryPoints.h"

namespace CTDbIntf {

TEntryPoints EntryPoints;

namespace {

// Stores a looked-up address into one slot, converted to the slot's type.
template <auto Slot>
void Store(void* address) {
  using TSlot = std::remove_reference_t<decltype(EntryPoints.*Slot)>;
  EntryPoints.*Slot = reinterpret_cast<TSlot>(address);
}

// The order is fixed: a library lacking several names reports the first of them in this order.
// "DELRFIL" is looked up a second time, into the same slot, after "DELIFIL".
constexpr TBinding kBindingOrder[] = {
#define CT_BIND(name) {#name, Store<&TEntryPoints::name>},
#define CT_BIND_AGAIN(name) CT_BIND(name)
#include "EntryPointList.inc"
#undef CT_BIND
#undef CT_BIND_AGAIN
};

static_assert(std::size(kBindingOrder) == 169);

}  // namespace

std::span<const TBinding> BindingOrder() { return kBindingOrder; }

}  // namespace CTDbIntf
