#include "tbxutl/platform/fatal_error.h"

#include <utility>

#include "tbxutl/platform/callback_slot_internal.h"

namespace {

// Lives until the process ends, so that faults met in static destructors
// still find it.
tbx::detail::CallbackSlot<tbx::FatalErrorHandler>& Slot() {
  static auto* slot = new tbx::detail::CallbackSlot<tbx::FatalErrorHandler>;
  return *slot;
}

}  // namespace

namespace tbx {

FatalErrorHandler SetFatalErrorHandler(FatalErrorHandler handler) { return Slot().Exchange(std::move(handler)); }

namespace detail {

void RunFatalErrorHandler() {
  std::shared_ptr<const FatalErrorHandler> handler = Slot().Current();
  if (handler) (*handler)();
}

}  // namespace detail
}  // namespace tbx
