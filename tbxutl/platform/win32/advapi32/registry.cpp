#include "tbxutl/platform/win32/advapi32/registry.h"

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tbxutl/platform/win32/advapi32/registry_store_internal.h"
#include "tbxutl/platform/win32/kernel32/handles_internal.h"

namespace tbx::detail::registry {
namespace {

// An open key: an entry of the process's handle table, so that any thread
// can use and close it (CloseHandle closes it too, as on Windows).
class KeyObject : public KernelObject {
 public:
  KeyObject(std::shared_ptr<Store> store, KeyId id, REGSAM access)
      : store(std::move(store)), id(id), access(access) {}
  const std::shared_ptr<Store> store;
  const KeyId id;
  const REGSAM access;
};

struct Key {
  std::shared_ptr<Store> store;
  KeyId id = 0;
  REGSAM access = 0;
  bool predefined = false;
};

constexpr REGSAM kGenericRights = GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE | GENERIC_ALL | MAXIMUM_ALLOWED;

// The rights a handle opened with `desired` has.
REGSAM Granted(REGSAM desired) {
  REGSAM granted = desired & ~(kGenericRights | KEY_WOW64_RES);
  if (desired & GENERIC_READ) granted |= KEY_READ;
  if (desired & GENERIC_WRITE) granted |= KEY_WRITE;
  if (desired & GENERIC_EXECUTE) granted |= KEY_EXECUTE;
  if (desired & (GENERIC_ALL | MAXIMUM_ALLOWED)) granted |= KEY_ALL_ACCESS;
  return granted;
}

// The key behind a handle: a predefined root (with every right) or an open
// key; ERROR_INVALID_HANDLE for anything else.
LONG Resolve(HKEY handle, Key* key) {
  int root = RootNumber(handle);
  if (root >= 0) {
    key->id = Store::RootKeyId(root);
    key->access = KEY_ALL_ACCESS;
    key->predefined = true;
    return Store::ForRoot(root, &key->store);
  }
  if (handle == nullptr) return ERROR_INVALID_HANDLE;
  auto object = std::dynamic_pointer_cast<KeyObject>(LookUpHandle(handle));
  if (!object) return ERROR_INVALID_HANDLE;
  key->store = object->store;
  key->id = object->id;
  key->access = object->access;
  return ERROR_SUCCESS;
}

// The components of a subkey path; empty components (doubled or trailing
// separators) are skipped, a leading separator is refused.
LONG SplitPath(const char* path, std::vector<std::string_view>* components) {
  if (path == nullptr) return ERROR_SUCCESS;
  if (path[0] == '\\') return ERROR_BAD_PATHNAME;
  std::string_view rest(path);
  while (!rest.empty()) {
    std::size_t end = rest.find('\\');
    std::string_view component = rest.substr(0, end);
    if (!component.empty()) components->push_back(component);
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  return ERROR_SUCCESS;
}

HKEY NewHandle(const Key& parent, KeyId id, REGSAM access) {
  auto object = std::make_shared<KeyObject>(parent.store, id, Granted(access));
  HANDLE handle = AddHandle(object);
  // A handle never looks like a predefined root; the table moves on.
  while (RootNumber(reinterpret_cast<HKEY>(handle)) >= 0) {
    HANDLE next = AddHandle(object);
    RemoveHandle(handle);
    handle = next;
  }
  return reinterpret_cast<HKEY>(handle);
}

bool IsStringType(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// Copies value data into the caller's buffer, which holds at least its
// size; a string stored without its terminator gets one when there is room.
void CopyData(const std::string& data, DWORD type, BYTE* buffer, DWORD bufferSize) {
  if (data.empty()) return;
  std::memcpy(buffer, data.data(), data.size());
  if (IsStringType(type) && data.size() < bufferSize && data.back() != '\0') buffer[data.size()] = 0;
}

void CopyName(const std::string& name, char* buffer) { std::memcpy(buffer, name.c_str(), name.size() + 1); }

}  // namespace
}  // namespace tbx::detail::registry

using namespace tbx::detail::registry;

extern "C" LSTATUS WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD, REGSAM samDesired, PHKEY phkResult) {
  if (phkResult == nullptr) return ERROR_INVALID_PARAMETER;
  if (RootNumber(hKey) >= 0 && (lpSubKey == nullptr || *lpSubKey == '\0')) {
    *phkResult = hKey;  // a root opens as itself
    return ERROR_SUCCESS;
  }
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status == ERROR_INVALID_HANDLE) return status;
  std::vector<std::string_view> path;
  KeyId id = 0;
  if (status == ERROR_SUCCESS) status = SplitPath(lpSubKey, &path);
  if (status == ERROR_SUCCESS) status = key.store->OpenKey(key.id, path, &id);
  *phkResult = status == ERROR_SUCCESS ? NewHandle(key, id, samDesired) : nullptr;
  return status;
}

extern "C" LSTATUS WINAPI RegOpenKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult) {
  if (phkResult == nullptr) return ERROR_INVALID_PARAMETER;
  if (lpSubKey == nullptr || *lpSubKey == '\0') {
    *phkResult = hKey;
    return ERROR_SUCCESS;
  }
  return RegOpenKeyExA(hKey, lpSubKey, 0, MAXIMUM_ALLOWED, phkResult);
}

extern "C" LSTATUS WINAPI RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR lpClass,
                                          DWORD dwOptions, REGSAM samDesired, const LPSECURITY_ATTRIBUTES,
                                          PHKEY phkResult, LPDWORD lpdwDisposition) {
  if (phkResult == nullptr) return ERROR_BADKEY;
  if (Reserved != 0) return ERROR_INVALID_PARAMETER;
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status == ERROR_INVALID_HANDLE) return status;
  std::vector<std::string_view> path;
  KeyId id = 0;
  bool created = false;
  if (status == ERROR_SUCCESS) status = SplitPath(lpSubKey, &path);
  if (status == ERROR_SUCCESS) {
    status = key.store->CreateKey(key.id, path, lpClass, (dwOptions & REG_OPTION_VOLATILE) != 0, &id, &created);
  }
  if (status != ERROR_SUCCESS) {
    *phkResult = nullptr;
    return status;
  }
  *phkResult = NewHandle(key, id, samDesired);
  if (lpdwDisposition != nullptr) *lpdwDisposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegCreateKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult) {
  if (phkResult == nullptr) return ERROR_INVALID_PARAMETER;
  if (RootNumber(hKey) >= 0 && (lpSubKey == nullptr || *lpSubKey == '\0')) {
    *phkResult = hKey;
    return ERROR_SUCCESS;
  }
  return RegCreateKeyExA(hKey, lpSubKey, 0, nullptr, REG_OPTION_NON_VOLATILE, MAXIMUM_ALLOWED, nullptr, phkResult,
                         nullptr);
}

extern "C" LSTATUS WINAPI RegCloseKey(HKEY hKey) {
  if (RootNumber(hKey) >= 0) return ERROR_SUCCESS;
  if (hKey == nullptr) return ERROR_INVALID_HANDLE;
  // Only a key handle is closed here, never another kind of object.
  if (!std::dynamic_pointer_cast<KeyObject>(tbx::detail::LookUpHandle(hKey))) return ERROR_INVALID_HANDLE;
  return tbx::detail::RemoveHandle(hKey) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

extern "C" LSTATUS WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                                           LPBYTE lpData, LPDWORD lpcbData) {
  if (lpReserved != nullptr || (lpData != nullptr && lpcbData == nullptr)) return ERROR_INVALID_PARAMETER;
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  if (!(key.access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
  DWORD type = REG_NONE;
  DWORD size = 0;
  std::string data;
  status = key.store->GetValue(key.id, lpValueName != nullptr ? lpValueName : "", &type,
                               lpData != nullptr ? &data : nullptr, &size);
  if (status == ERROR_FILE_NOT_FOUND && lpData == nullptr && lpcbData != nullptr) *lpcbData = 0;
  if (status != ERROR_SUCCESS) return status;
  if (lpType != nullptr) *lpType = type;
  if (lpData != nullptr) {
    if (size > *lpcbData) {
      *lpcbData = size;
      return ERROR_MORE_DATA;
    }
    CopyData(data, type, lpData, *lpcbData);
  }
  if (lpcbData != nullptr) *lpcbData = size;
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD, DWORD dwType, const BYTE* lpData,
                                         DWORD cbData) {
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  if (!(key.access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
  if (lpData == nullptr && cbData != 0) return ERROR_NOACCESS;
  std::string_view name = lpValueName != nullptr ? lpValueName : "";
  if (name.size() > kMaxValueNameLength) return ERROR_INVALID_PARAMETER;
  return key.store->SetValue(key.id, name, dwType, lpData, cbData);
}

extern "C" LSTATUS WINAPI RegDeleteValueA(HKEY hKey, LPCSTR lpValueName) {
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  if (!(key.access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
  return key.store->DeleteValue(key.id, lpValueName != nullptr ? lpValueName : "");
}

extern "C" LSTATUS WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                                        LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                                        PFILETIME lpftLastWriteTime) {
  if (lpName == nullptr || lpcchName == nullptr || lpReserved != nullptr ||
      (lpClass != nullptr && lpcchClass == nullptr)) {
    return ERROR_INVALID_PARAMETER;
  }
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  if (!(key.access & KEY_ENUMERATE_SUB_KEYS)) return ERROR_ACCESS_DENIED;
  SubkeyRecord subkey;
  if ((status = key.store->SubkeyAt(key.id, dwIndex, &subkey)) != ERROR_SUCCESS) return status;
  // Names are counted without their terminator; the buffer needs room for it.
  if (subkey.name.size() >= *lpcchName || (lpClass != nullptr && subkey.className.size() >= *lpcchClass)) {
    return ERROR_MORE_DATA;
  }
  CopyName(subkey.name, lpName);
  *lpcchName = static_cast<DWORD>(subkey.name.size());
  if (lpClass != nullptr) CopyName(subkey.className, lpClass);
  if (lpcchClass != nullptr) *lpcchClass = static_cast<DWORD>(subkey.className.size());
  if (lpftLastWriteTime != nullptr) *lpftLastWriteTime = subkey.written;
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegEnumKeyA(HKEY hKey, DWORD dwIndex, LPSTR lpName, DWORD cchName) {
  return RegEnumKeyExA(hKey, dwIndex, lpName, &cchName, nullptr, nullptr, nullptr, nullptr);
}

extern "C" LSTATUS WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName,
                                        LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData) {
  if (lpValueName == nullptr || lpcchValueName == nullptr || lpReserved != nullptr ||
      (lpData != nullptr && lpcbData == nullptr)) {
    return ERROR_INVALID_PARAMETER;
  }
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  if (!(key.access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
  ValueRecord value;
  if ((status = key.store->ValueAt(key.id, dwIndex, &value)) != ERROR_SUCCESS) return status;
  auto size = static_cast<DWORD>(value.data.size());
  if (lpType != nullptr) *lpType = value.type;
  // Either buffer too small: nothing is copied, the data size is told.
  if (value.name.size() >= *lpcchValueName || (lpData != nullptr && size > *lpcbData)) {
    if (lpcbData != nullptr) *lpcbData = size;
    return ERROR_MORE_DATA;
  }
  CopyName(value.name, lpValueName);
  *lpcchValueName = static_cast<DWORD>(value.name.size());
  if (lpData != nullptr) CopyData(value.data, value.type, lpData, *lpcbData);
  if (lpcbData != nullptr) *lpcbData = size;
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass, LPDWORD lpReserved,
                                           LPDWORD lpcSubKeys, LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                           LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen, LPDWORD lpcbMaxValueLen,
                                           LPDWORD lpcbSecurityDescriptor, PFILETIME lpftLastWriteTime) {
  if (lpReserved != nullptr || (lpClass != nullptr && lpcchClass == nullptr)) return ERROR_INVALID_PARAMETER;
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  if (!(key.access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
  KeyStats stats;
  if ((status = key.store->Stats(key.id, &stats)) != ERROR_SUCCESS) return status;
  if (lpcSubKeys != nullptr) *lpcSubKeys = stats.subkeys;
  if (lpcbMaxSubKeyLen != nullptr) *lpcbMaxSubKeyLen = stats.maxSubkeyName;
  if (lpcbMaxClassLen != nullptr) *lpcbMaxClassLen = stats.maxClass;
  if (lpcValues != nullptr) *lpcValues = stats.values;
  if (lpcbMaxValueNameLen != nullptr) *lpcbMaxValueNameLen = stats.maxValueName;
  if (lpcbMaxValueLen != nullptr) *lpcbMaxValueLen = stats.maxValueData;
  if (lpcbSecurityDescriptor != nullptr) *lpcbSecurityDescriptor = 0;  // keys carry no security descriptor
  if (lpftLastWriteTime != nullptr) *lpftLastWriteTime = stats.written;
  auto classLength = static_cast<DWORD>(stats.className.size());
  if (lpClass != nullptr) {
    if (classLength >= *lpcchClass) {
      *lpcchClass = classLength;
      return ERROR_MORE_DATA;
    }
    CopyName(stats.className, lpClass);
  }
  if (lpcchClass != nullptr) *lpcchClass = classLength;
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey) {
  if (lpSubKey == nullptr) return ERROR_INVALID_PARAMETER;
  Key key;
  LONG status = Resolve(hKey, &key);
  if (status != ERROR_SUCCESS) return status;
  // The key to delete (the handle's own for an empty path) is opened for
  // deletion on the caller's behalf: the handle's rights do not matter.
  std::vector<std::string_view> path;
  if ((status = SplitPath(lpSubKey, &path)) != ERROR_SUCCESS) return status;
  return key.store->DeleteKey(key.id, path);
}

extern "C" LSTATUS WINAPI RegFlushKey(HKEY hKey) {
  Key key;
  LONG status = Resolve(hKey, &key);
  return status != ERROR_SUCCESS ? status : key.store->Flush(key.id);
}
