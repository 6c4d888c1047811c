#include "tbxutl/platform/fatal_error.h"

#include <memory>
#include <mutex>
#include <utility>

namespace {

struct HandlerSlot {
  std::mutex mutex;
  std::shared_ptr<const tbx::FatalErrorHandler> handler;  // null: the default
};

// Lives until the process ends, so that faults met in static destructors
// still find it.
HandlerSlot& Slot() {
  static HandlerSlot* slot = new HandlerSlot;
  return *slot;
}

}  // namespace

namespace tbx {

FatalErrorHandler SetFatalErrorHandler(FatalErrorHandler handler) {
  std::shared_ptr<const FatalErrorHandler> next;
  if (handler) next = std::make_shared<const FatalErrorHandler>(std::move(handler));
  std::shared_ptr<const FatalErrorHandler> previous;
  {
    std::lock_guard<std::mutex> lock(Slot().mutex);
    previous = std::exchange(Slot().handler, std::move(next));
  }
  return previous ? *previous : FatalErrorHandler();
}

namespace detail {

void RunFatalErrorHandler() {
  std::shared_ptr<const FatalErrorHandler> handler;
  {
    std::lock_guard<std::mutex> lock(Slot().mutex);
    handler = Slot().handler;
  }
  if (handler) (*handler)();
}

}  // namespace detail
}  // namespace tbx
