#include "tbxutl/frame/app_callbacks.h"

#include <new>

namespace {
// Used from the application's user-interface thread only.
VKDUTLAPPCB* g_appCallbacks = nullptr;
}  // namespace

extern "C" VKDUTLAPPCB* WINAPI UTLInitializeAppCallbacks() {
  if (g_appCallbacks == nullptr) {
    g_appCallbacks = new (std::nothrow) VKDUTLAPPCB{};
  }
  return g_appCallbacks;
}

extern "C" VKDUTLAPPCB* WINAPI UTLGetAppCallbacks() { return g_appCallbacks; }

extern "C" void WINAPI UTLShutdownAppCallbacks() {
  delete g_appCallbacks;
  g_appCallbacks = nullptr;
}
