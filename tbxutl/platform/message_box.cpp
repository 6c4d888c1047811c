#include "tbxutl/platform/message_box.h"

#include <memory>
#include <mutex>
#include <utility>

namespace {

struct PresenterSlot {
  std::mutex mutex;
  std::shared_ptr<const tbx::MessageBoxPresenter> presenter;  // null: the default
};

// Lives until the process ends, so that boxes shown from static destructors
// still find it.
PresenterSlot& Slot() {
  static PresenterSlot* slot = new PresenterSlot;
  return *slot;
}

}  // namespace

namespace tbx {

MessageBoxPresenter SetMessageBoxPresenter(MessageBoxPresenter presenter) {
  std::shared_ptr<const MessageBoxPresenter> next;
  if (presenter) next = std::make_shared<const MessageBoxPresenter>(std::move(presenter));
  std::shared_ptr<const MessageBoxPresenter> previous;
  {
    std::lock_guard<std::mutex> lock(Slot().mutex);
    previous = std::exchange(Slot().presenter, std::move(next));
  }
  if (!previous) return &detail::DefaultMessageBoxPresenter;
  return *previous;
}

namespace detail {

int ShowMessageBox(HWND owner, const char* text, const char* caption, UINT type) {
  std::shared_ptr<const MessageBoxPresenter> presenter;
  {
    std::lock_guard<std::mutex> lock(Slot().mutex);
    presenter = Slot().presenter;
  }
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
