#pragma once
// The process's handle table on Linux: every kernel object (file, event,
// mutex, thread, find or change notification) is reached through a HANDLE
// that indexes this table. Objects are shared, so a handle closed by one
// thread does not free an object another thread is still using.

#include <memory>

#include "tbxutl/platform/windows.h"

namespace tbx::detail {

class KernelObject {
 public:
  virtual ~KernelObject() = default;
};

HANDLE AddHandle(std::shared_ptr<KernelObject> object);
// The object behind a handle, or null (with ERROR_INVALID_HANDLE set) when
// the handle is not open or is of another kind.
template <typename T>
std::shared_ptr<T> GetHandleObject(HANDLE handle);
std::shared_ptr<KernelObject> LookUpHandle(HANDLE handle);
// Removes the handle; false when it was not open.
bool RemoveHandle(HANDLE handle);

template <typename T>
std::shared_ptr<T> GetHandleObject(HANDLE handle) {
  auto object = std::dynamic_pointer_cast<T>(LookUpHandle(handle));
  if (!object) SetLastError(ERROR_INVALID_HANDLE);
  return object;
}

}  // namespace tbx::detail
