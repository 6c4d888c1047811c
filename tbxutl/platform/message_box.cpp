#include "tbxutl/platform/message_box.h"

#include <utility>

#include "tbxutl/platform/callback_slot_internal.h"

namespace {

// Lives until the process ends, so that boxes shown from static destructors
// still find it.
tbx::detail::CallbackSlot<tbx::MessageBoxPresenter>& Slot() {
  static auto* slot = new tbx::detail::CallbackSlot<tbx::MessageBoxPresenter>;
  return *slot;
}

}  // namespace

namespace tbx {

MessageBoxPresenter SetMessageBoxPresenter(MessageBoxPresenter presenter) {
  MessageBoxPresenter previous = Slot().Exchange(std::move(presenter));
  if (!previous) return &detail::DefaultMessageBoxPresenter;
  return previous;
}

namespace detail {

int ShowMessageBox(HWND owner, const char* text, const char* caption, UINT type) {
  std::shared_ptr<const MessageBoxPresenter> presenter = Slot().Current();
  if (!presenter) return DefaultMessageBoxPresenter(owner, text, caption, type);
  return (*presenter)(owner, text, caption, type);
}

int DefaultAnswer(UINT type) {
  static const int kButtons[][3] = {
      {IDOK, 0, 0},                          // MB_OK
      {IDOK, IDCANCEL, 0},                   // MB_OKCANCEL
      {IDABORT, IDRETRY, IDIGNORE},          // MB_ABORTRETRYIGNORE
      {IDYES, IDNO, IDCANCEL},               // MB_YESNOCANCEL
      {IDYES, IDNO, 0},                      // MB_YESNO
      {IDRETRY, IDCANCEL, 0},                // MB_RETRYCANCEL
      {IDCANCEL, IDTRYAGAIN, IDCONTINUE},    // MB_CANCELTRYCONTINUE
  };
  const UINT set = type & MB_TYPEMASK;
  if (set >= sizeof kButtons / sizeof kButtons[0]) return 0;
  const UINT index = (type & MB_DEFMASK) >> 8;
  if (index < 3 && kButtons[set][index] != 0) return kButtons[set][index];
  return kButtons[set][0];
}

}  // namespace detail
}  // namespace tbx
