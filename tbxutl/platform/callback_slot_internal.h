#pragma once
// A callback that the host can replace from any thread while other threads
// call it: callers take a shared copy under the lock and run it without
// the lock, so a callback may replace itself.

#include <memory>
#include <mutex>
#include <utility>

namespace tbx::detail {

template <typename Callback>
class CallbackSlot {
 public:
  // Stores callback (an empty one clears the slot) and answers the previous
  // one, empty when there was none.
  Callback Exchange(Callback callback) {
    std::shared_ptr<const Callback> next;
    if (callback) next = std::make_shared<const Callback>(std::move(callback));
    std::shared_ptr<const Callback> previous;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      previous = std::exchange(current_, std::move(next));
    }
    return previous ? *previous : Callback();
  }

  // The current callback, or null.
  std::shared_ptr<const Callback> Current() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return current_;
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<const Callback> current_;
};

}  // namespace tbx::detail
