#pragma once
// What happens after the library's fatal-error box. The library shows the
// box and then calls the fatal-error handler; the default handler does
// nothing more, so the function that met the fault returns its failure
// value. A host that must not go on (or a test that wants to see the fault)
// sets its own handler: it may end the process, or record the fault and
// return.

#include <functional>

#include "tbxutl/export.h"

namespace tbx {

using FatalErrorHandler = std::function<void()>;

// Makes handler the one called after each fatal-error box and answers the
// previous one (empty for the default). An empty handler restores the
// default. Safe to call from any thread, also from inside a handler.
TBXUTL_API FatalErrorHandler SetFatalErrorHandler(FatalErrorHandler handler);

namespace detail {

// Called by the library after the fatal-error box is dismissed. The handler
// runs without any lock held.
TBXUTL_API void RunFatalErrorHandler();

}  // namespace detail
}  // namespace tbx
