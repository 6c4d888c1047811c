#include <mutex>
#include <unordered_map>

#include "tbxutl/platform/win32/kernel32/handles.h"
#include "tbxutl/platform/win32/kernel32/handles_internal.h"

namespace tbx::detail {
namespace {

struct HandleTable {
  std::mutex mutex;
  std::unordered_map<std::uintptr_t, std::shared_ptr<KernelObject>> objects;
  std::uintptr_t next = 0x100;  // handle values are multiples of 4, as on Windows
};

HandleTable& Table() {
  static HandleTable* table = new HandleTable;  // outlives static destructors
  return *table;
}

}  // namespace

HANDLE AddHandle(std::shared_ptr<KernelObject> object) {
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  while (table.objects.count(table.next) != 0) table.next += 4;
  std::uintptr_t value = table.next;
  table.next += 4;
  table.objects.emplace(value, std::move(object));
  return reinterpret_cast<HANDLE>(value);
}

std::shared_ptr<KernelObject> LookUpHandle(HANDLE handle) {
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  auto it = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
  return it == table.objects.end() ? nullptr : it->second;
}

bool RemoveHandle(HANDLE handle) {
  std::shared_ptr<KernelObject> object;  // released outside the lock
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  auto it = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
  if (it == table.objects.end()) return false;
  object = std::move(it->second);
  table.objects.erase(it);
  return true;
}

}  // namespace tbx::detail

extern "C" BOOL WINAPI CloseHandle(HANDLE hObject) {
  if (!tbx::detail::RemoveHandle(hObject)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  return TRUE;
}
