#include "tbxutl/config/registry.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tbxutl/platform/mbstring.h"

namespace {

// Names and string values are read into buffers of this many bytes.
constexpr DWORD kNameBufferSize = 260;

constexpr REGSAM kReadWrite = KEY_READ | KEY_WRITE;  // 0x2001F
constexpr LONG kUnknownRoot = ERROR_OPEN_FAILED;     // 110
constexpr LONG kNoKey = -1;

struct RootName {
  const char* name;
  HKEY key;
};

const RootName kRoots[] = {
    {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},         {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
    {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},       {"HKEY_USERS", HKEY_USERS},
    {"HKEY_PERFORMANCE_DATA", HKEY_PERFORMANCE_DATA}, {"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
};

const unsigned char* Bytes(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

// Character count of a zero-terminated string in the multibyte code page.
DWORD CharacterCount(const char* text) { return static_cast<DWORD>(_mbslen(Bytes(text))); }

// Character count of `text`, looking at no more than `limit` bytes (the text
// need not be terminated within them).
int BoundedCharacterCount(const char* text, int limit) {
  int count = 0;
  for (int i = 0; i < limit && text[i] != '\0'; ++count) {
    i += (_ismbblead(static_cast<unsigned char>(text[i])) && i + 1 < limit && text[i + 1] != '\0') ? 2 : 1;
  }
  return count;
}

// Copies at most `count` bytes of `src` (fewer when it ends) to `dest`,
// never splitting a double-byte character; writes no terminator. Answers the
// number of bytes copied.
int CopyWholeCharacters(char* dest, const char* src, int count) {
  int i = 0;
  while (i < count && src[i] != '\0') {
    const bool lead = _ismbblead(static_cast<unsigned char>(src[i])) && src[i + 1] != '\0';
    if (lead && i + 1 >= count) break;
    dest[i] = src[i];
    if (lead) {
      dest[i + 1] = src[i + 1];
      ++i;
    }
    ++i;
  }
  return i;
}

// The key path of the static one-call functions: base then sub.
CString JoinPath(const char* base, const char* sub) {
  CString path(base != nullptr ? base : "");
  if (sub != nullptr) path += sub;
  return path;
}

}  // namespace

WUTLRegistry::WUTLRegistry(const char* keyPath, REGSAM access, int create)
    : m_hKey(nullptr), m_status(kUnknownRoot), m_access(KEY_READ) {
  OpenKey(keyPath, create, access);
}

WUTLRegistry::WUTLRegistry(const WUTLRegistry& other)
    : m_hKey(other.m_hKey), m_status(other.m_status), m_location(other.m_location), m_access(other.m_access) {}

WUTLRegistry& WUTLRegistry::operator=(const WUTLRegistry& other) {
  m_hKey = other.m_hKey;
  m_status = other.m_status;
  m_location = other.m_location;
  m_access = other.m_access;
  return *this;
}

WUTLRegistry::~WUTLRegistry() {
  HelperCloseKey();
  m_location.Empty();
}

// ---------------------------------------------------------------------------
// Opening and closing

LONG WUTLRegistry::OpenKey(const char* keyPath, int create, REGSAM access) {
  if (keyPath == nullptr) return m_status;
  if (m_hKey == nullptr) {
    HelperOpenKey(m_hKey, keyPath, access, create);
  } else {
    HKEY opened = nullptr;
    // With creation the key may already have been taken over by the nested
    // OpenKey of HelperOpenKey; then there is nothing left to swap.
    if (HelperOpenKey(opened, keyPath, access, create) == ERROR_SUCCESS && opened != nullptr) {
      RegCloseKey(m_hKey);
      m_hKey = opened;
    }
  }
  return m_status;
}

LONG WUTLRegistry::HelperOpenKey(HKEY& key, const char* keyPath, REGSAM access, int create) {
  if (keyPath == nullptr) return m_status;
  // The path may be our own m_location, which step 5 replaces.
  const CString path(keyPath);
  std::string remainder(path.GetString());
  HKEY root = nullptr;
  if (!HelperParseRootFromSubKey(remainder.data(), root)) {
    m_status = kUnknownRoot;
    return m_status;
  }
  HKEY opened = nullptr;
  m_status = RegOpenKeyExA(root, remainder.c_str(), 0, access, &opened);
  if (m_status == ERROR_SUCCESS) {
    key = opened;
  } else if (create != 0 && CreateKey(path, access, 0) == ERROR_SUCCESS) {
    // The access goes in the place of the create flag and the key is
    // reopened for reading and writing, whatever was asked: callers rely on
    // the write access this gives them.
    m_status = OpenKey(path, static_cast<int>(access), kReadWrite);
  }
  if (m_status == ERROR_SUCCESS) {
    m_location = path;
    m_access = access;
  }
  return m_status;
}

LONG WUTLRegistry::HelperCloseKey() {
  if (m_hKey != nullptr) {
    RegCloseKey(m_hKey);
    m_hKey = nullptr;
    m_location.Empty();
    m_access = KEY_READ;
  }
  return 0;
}

int WUTLRegistry::HelperParseRootFromSubKey(char* keyPath, HKEY& root) {
  if (keyPath == nullptr) return 0;
  std::string rootName;
  auto* separator = _mbschr(reinterpret_cast<unsigned char*>(keyPath), '\\');
  if (separator != nullptr) {
    char* rest = reinterpret_cast<char*>(separator);
    rootName.assign(keyPath, rest);
    std::memmove(keyPath, rest + 1, std::strlen(rest + 1) + 1);
  } else {
    rootName = keyPath;
    keyPath[0] = '\0';
  }
  return HelperGetHKeyConstant(rootName.c_str(), root);
}

int WUTLRegistry::HelperGetHKeyConstant(const char* rootName, HKEY& root) {
  for (const RootName& entry : kRoots) {
    if (std::strcmp(entry.name, rootName) == 0) {
      root = entry.key;
      return 1;
    }
  }
  root = nullptr;
  return 0;
}

const char* WUTLRegistry::HelperGetString(HKEY root) {
  for (const RootName& entry : kRoots) {
    if (entry.key == root && entry.key != HKEY_CURRENT_CONFIG) return entry.name;
  }
  return "HKEY_CURRENT_CONFIG";
}

HKEY WUTLRegistry::HelperGetCurrentHandle() const { return m_hKey; }

LONG WUTLRegistry::IsValid() {
  if (IsValid(m_location) != ERROR_SUCCESS) return kUnknownRoot;
  const CString location(m_location);
  return OpenKey(location, 0, m_access);
}

LONG WUTLRegistry::IsValid(const char* keyPath) {
  WUTLRegistry probe(keyPath, KEY_READ, 0);
  return probe.m_status;
}

LONG WUTLRegistry::CreateKey(const char* keyPath, REGSAM access, DWORD options) {
  if (keyPath == nullptr) return kNoKey;
  std::string remainder(keyPath);
  HKEY root = nullptr;
  if (!HelperParseRootFromSubKey(remainder.data(), root)) return kNoKey;
  HKEY created = nullptr;
  const LONG status =
      RegCreateKeyExA(root, remainder.c_str(), 0, nullptr, options, access, nullptr, &created, nullptr);
  if (status == ERROR_SUCCESS) RegCloseKey(created);
  return status;
}

LONG WUTLRegistry::DeleteRegistryKey(const char* keyPath) {
  WUTLRegistry key(keyPath, KEY_READ, 0);
  for (;;) {
    DWORD subkeys = 0;
    if (RegQueryInfoKeyA(key.HelperGetCurrentHandle(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS ||
        subkeys == 0) {
      break;
    }
    // A subkey that cannot be deleted is asked for again; only a count of 0
    // ends the loop. A subkey that cannot even be named would give the key's
    // own path here, so that ends it too.
    CString name;
    if (key.GetNextSubkey(name, 0) != ERROR_SUCCESS) break;
    DeleteRegistryKey(key.m_location + "\\" + name);
  }
  key.HelperCloseKey();
  std::string remainder(keyPath != nullptr ? keyPath : "");
  HKEY root = nullptr;
  HelperParseRootFromSubKey(remainder.data(), root);
  return RegDeleteKeyA(root, remainder.c_str());
}

// ---------------------------------------------------------------------------
// Values

LONG WUTLRegistry::HelperGetValue(const char* name, BYTE* buffer, DWORD& size) {
  return RegQueryValueExA(m_hKey, name, nullptr, nullptr, buffer, &size);
}

LONG WUTLRegistry::HelperSetValue(const char* name, const BYTE* data, DWORD& size, DWORD type) {
  return RegSetValueExA(m_hKey, name, 0, type, data, size);
}

LONG WUTLRegistry::GetValue(const char* name, DWORD& number) {
  DWORD size = sizeof number;
  return HelperGetValue(name, reinterpret_cast<BYTE*>(&number), size);
}

LONG WUTLRegistry::GetValue(const char* name, CString& value) {
  // GetBuffer gives one byte beyond the 260 for a terminator that the data
  // may lack.
  char* buffer = value.GetBuffer(kNameBufferSize);
  DWORD size = kNameBufferSize;
  const LONG status = HelperGetValue(name, reinterpret_cast<BYTE*>(buffer), size);
  buffer[status == ERROR_SUCCESS ? std::min(size, kNameBufferSize) : 0] = '\0';
  value.ReleaseBuffer(-1);
  return status;
}

LONG WUTLRegistry::SetValue(const char* name, const char* value) {
  if (value == nullptr) value = "";
  // The character count, not the byte count, and no terminator: that is
  // what every reader of these values was written against.
  DWORD size = CharacterCount(value);
  return HelperSetValue(name, Bytes(value), size, REG_SZ);
}

LONG WUTLRegistry::SetValue(const char* name, DWORD number) {
  DWORD size = sizeof number;
  return HelperSetValue(name, reinterpret_cast<const BYTE*>(&number), size, REG_DWORD);
}

LONG WUTLRegistry::DeleteValue(const char* name) { return RegDeleteValueA(m_hKey, name); }

LONG WUTLRegistry::DeleteRegistryValue(const char* name) {
  if (m_hKey == nullptr) return kNoKey;
  const LONG status = RegDeleteValueA(m_hKey, name);
  HelperCloseKey();
  return status;
}

LONG WUTLRegistry::RenameValue(const char* oldName, const char* newName) {
  DWORD type = REG_NONE;
  LONG status = RegQueryValueExA(m_hKey, oldName, nullptr, &type, nullptr, nullptr);
  if (status != ERROR_SUCCESS) return status;
  if (type == REG_SZ) {
    CString text;
    if ((status = GetValue(oldName, text)) != ERROR_SUCCESS) return status;
    if ((status = SetValue(newName, text)) != ERROR_SUCCESS) return status;
  } else if (type == REG_DWORD) {
    DWORD number = 0;
    if ((status = GetValue(oldName, number)) != ERROR_SUCCESS) return status;
    if ((status = SetValue(newName, number)) != ERROR_SUCCESS) return status;
  } else {
    return ERROR_NO_MORE_ITEMS;
  }
  return DeleteValue(oldName);
}

int WUTLRegistry::GetCurrentKeyLocation(CString& location) {
  location = m_location;
  return 1;
}

// ---------------------------------------------------------------------------
// Enumeration

LONG WUTLRegistry::GetNextSubkey(CString& name, DWORD index) {
  char* buffer = name.GetBuffer(kNameBufferSize);
  DWORD length = kNameBufferSize;
  const LONG status = RegEnumKeyExA(m_hKey, index, buffer, &length, nullptr, nullptr, nullptr, nullptr);
  name.ReleaseBuffer(status == ERROR_SUCCESS ? static_cast<int>(std::min(length, kNameBufferSize - 1)) : 0);
  return status;
}

LONG WUTLRegistry::HelperGetNextValue(char* name, BYTE* data, DWORD& nameSize, DWORD& dataSize, DWORD* type,
                                      DWORD index) {
  return RegEnumValueA(m_hKey, index, name, &nameSize, nullptr, type, data, data != nullptr ? &dataSize : nullptr);
}

LONG WUTLRegistry::GetNextValue(CString& name, CString& data, DWORD index) {
  char* nameBuffer = name.GetBuffer(kNameBufferSize);
  char* dataBuffer = data.GetBuffer(kNameBufferSize);
  DWORD nameSize = kNameBufferSize;
  DWORD dataSize = kNameBufferSize;
  const LONG status =
      HelperGetNextValue(nameBuffer, reinterpret_cast<BYTE*>(dataBuffer), nameSize, dataSize, nullptr, index);
  const bool ok = status == ERROR_SUCCESS;
  name.ReleaseBuffer(ok ? static_cast<int>(std::min(nameSize, kNameBufferSize - 1)) : 0);
  // Raw bytes of any type, up to their first zero.
  dataBuffer[ok ? std::min(dataSize, kNameBufferSize) : 0] = '\0';
  data.ReleaseBuffer(-1);
  return status;
}

LONG WUTLRegistry::GetNextValue(CString& name, DWORD& number, DWORD index) {
  char* nameBuffer = name.GetBuffer(kNameBufferSize);
  DWORD nameSize = kNameBufferSize;
  DWORD dataSize = sizeof number;
  const LONG status =
      HelperGetNextValue(nameBuffer, reinterpret_cast<BYTE*>(&number), nameSize, dataSize, nullptr, index);
  name.ReleaseBuffer(status == ERROR_SUCCESS ? static_cast<int>(std::min(nameSize, kNameBufferSize - 1)) : 0);
  return status;
}

LONG WUTLRegistry::GetNextValue(CString& name, DWORD index) {
  char* nameBuffer = name.GetBuffer(kNameBufferSize);
  DWORD nameSize = kNameBufferSize;
  DWORD dataSize = 0;
  const LONG status = HelperGetNextValue(nameBuffer, nullptr, nameSize, dataSize, nullptr, index);
  name.ReleaseBuffer(status == ERROR_SUCCESS ? static_cast<int>(std::min(nameSize, kNameBufferSize - 1)) : 0);
  return status;
}

namespace {

// The double-zero list of GetSubkeyList and GetValueNameList; `fetch` names
// the entry at an index (empty on failure) and answers the status.
template <typename Fetch>
void FillNameList(char* buffer, int size, Fetch fetch) {
  if (buffer == nullptr || size <= 0) return;
  if (size == 1) {
    buffer[0] = '\0';
    return;
  }
  int offset = 0;
  for (DWORD index = 0;; ++index) {
    CString name;
    const LONG status = fetch(name, index);
    const int length = name.GetLength();
    if (length + 2 + offset >= size) {
      const int room = size - offset - 2;
      const int copied = CopyWholeCharacters(buffer + offset, name, room);
      std::memset(buffer + offset + copied, 0, static_cast<std::size_t>(size - offset - copied));
      return;
    }
    std::memcpy(buffer + offset, name.GetString(), static_cast<std::size_t>(length) + 1);
    offset += length + 1;
    if (status != ERROR_SUCCESS) {
      // The empty name fetched at the end closed the list; an empty list
      // gets a second zero, to read as a double-zero list too.
      if (offset == 1) buffer[1] = '\0';
      return;
    }
  }
}

}  // namespace

void WUTLRegistry::GetSubkeyList(char* buffer, int size) {
  FillNameList(buffer, size, [this](CString& name, DWORD index) { return GetNextSubkey(name, index); });
}

void WUTLRegistry::GetValueNameList(char* buffer, int size) {
  FillNameList(buffer, size, [this](CString& name, DWORD index) {
    CString data;
    return GetNextValue(name, data, index);
  });
}

// ---------------------------------------------------------------------------
// One-call functions

int WUTLRegistry::RegReadInt(const char* sub, const char* name, int defaultValue, const char* base) {
  const CString path = JoinPath(base, sub);
  {
    WUTLRegistry key(path, KEY_READ, 0);
    CString text;
    if (key.m_status == ERROR_SUCCESS && key.GetValue(name, text) == ERROR_SUCCESS) {
      const long number = std::strtol(text, nullptr, 10);
      return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
    }
  }
  CString text;
  text.Format("%d", defaultValue);
  WUTLRegistry key(path, KEY_WRITE, 1);
  key.SetValue(name, text);
  return defaultValue;
}

int WUTLRegistry::RegReadString(const char* sub, const char* name, const char* defaultValue, char* out, int size,
                                const char* base) {
  if (out == nullptr || size < 0) return 0;
  const CString path = JoinPath(base, sub);
  bool found = false;
  {
    WUTLRegistry key(path, KEY_READ, 0);
    if (key.m_status == ERROR_SUCCESS) {
      if (sub == nullptr) {
        key.GetSubkeyList(out, size);
        found = true;
      } else if (name == nullptr) {
        key.GetValueNameList(out, size);
        found = true;
      } else {
        CString value;
        if (key.GetValue(name, value) == ERROR_SUCCESS) {
          const int length = value.GetLength();
          if (length < size) {
            std::memcpy(out, value.GetString(), static_cast<std::size_t>(length) + 1);
          } else {
            // size - 1 characters, and the zero at out[size]: one past the
            // size the caller named, who passed one less than the buffer.
            CopyWholeCharacters(out, value, size - 1);
            out[size] = '\0';
          }
          found = true;
        }
      }
    }
  }
  if (!found) {
    if (sub != nullptr && name != nullptr) {
      const char* text = defaultValue != nullptr ? defaultValue : "";
      WUTLRegistry key(path, KEY_WRITE, 1);
      key.SetValue(name, text);
      // By bytes, which is the character count in a single-byte code page
      // and keeps a double-byte default inside the buffer.
      if (std::strlen(text) < static_cast<std::size_t>(size)) {
        std::strcpy(out, text);
      } else {
        // `size` characters' worth of bytes, without a terminator.
        CopyWholeCharacters(out, text, size);
      }
    } else if (size > 0) {
      out[0] = '\0';
    }
  }
  // The found value that filled the buffer ends at out[size].
  return BoundedCharacterCount(out, size + (found ? 1 : 0));
}

int WUTLRegistry::RegReadBinary(const char* sub, const char* name, BYTE* out, int size, const char* base) {
  if (sub == nullptr || name == nullptr || out == nullptr || size < 0) return -1;
  WUTLRegistry key(JoinPath(base, sub), KEY_READ, 0);
  if (key.m_status != ERROR_SUCCESS) return -1;
  DWORD count = static_cast<DWORD>(size);
  if (key.HelperGetValue(name, out, count) != ERROR_SUCCESS) return -1;
  return static_cast<int>(count);
}

namespace {

// The common flow of RegWriteString and RegWriteBinary. `store` writes the
// value into an open key and answers the status.
template <typename Store>
int WriteValue(const char* sub, const char* name, bool deleteValue, Store store, const char* base) {
  const CString path = JoinPath(base, sub);
  {
    WUTLRegistry key(path, KEY_WRITE, 0);
    CString location;
    key.GetCurrentKeyLocation(location);
    if (!location.IsEmpty()) {
      LONG status;
      if (name == nullptr) {
        status = WUTLRegistry::DeleteRegistryKey(path);
      } else if (deleteValue) {
        status = key.DeleteRegistryValue(name);
      } else {
        status = store(key);
      }
      if (status == ERROR_SUCCESS) return 1;
    }
  }
  // A delete never creates the key.
  if (sub == nullptr || name == nullptr || deleteValue) return 0;
  WUTLRegistry key(path, KEY_WRITE, 1);
  CString location;
  key.GetCurrentKeyLocation(location);
  if (location.IsEmpty()) return 0;
  return store(key) == ERROR_SUCCESS ? 1 : 0;
}

}  // namespace

int WUTLRegistry::RegWriteString(const char* sub, const char* name, const char* text, const char* base) {
  return WriteValue(
      sub, name, text == nullptr, [&](WUTLRegistry& key) { return key.SetValue(name, text); }, base);
}

int WUTLRegistry::RegWriteBinary(const char* sub, const char* name, const BYTE* bytes, int count,
                                 const char* base) {
  if (count < 0) return 0;
  return WriteValue(
      sub, name, bytes == nullptr,
      [&](WUTLRegistry& key) {
        DWORD size = static_cast<DWORD>(count);
        return key.HelperSetValue(name, bytes, size, REG_BINARY);
      },
      base);
}
