#include "tbxutl/platform/win32/kernel32/resources.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "tbxutl/platform/win32/kernel32/last_error.h"
#include "tbxutl/platform/win32/kernel32/modules.h"
#include "tbxutl/platform/win32/winerror.h"

namespace {

using tbx::win32::ResourceKey;
using tbx::win32::ScriptResource;

constexpr WORD kLangNeutral = 0x00;
constexpr WORD kLangEnglish = 0x09;
constexpr WORD kUserDefaultLanguage = 0x0409;

ResourceKey KeyOf(LPCSTR nameOrNumber) {
  ResourceKey key;
  if (IS_INTRESOURCE(nameOrNumber)) {
    key.number = static_cast<std::uint16_t>(reinterpret_cast<ULONG_PTR>(nameOrNumber));
    return key;
  }
  if (nameOrNumber[0] == '#') {
    unsigned value = 0;
    for (const char* p = nameOrNumber + 1; *p >= '0' && *p <= '9'; ++p) value = (value * 10 + (*p - '0')) & 0xFFFF;
    key.number = static_cast<std::uint16_t>(value);
    return key;
  }
  key.name = nameOrNumber;
  for (char& c : key.name) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return key;
}

// The resource of `type` and `name` in the module: of `language` exactly,
// or for a neutral language the best one present (neutral, the user's
// language, English, else the lowest). Null with the lookup's error code.
const ScriptResource* FindEntry(HMODULE module, const ResourceKey& type, const ResourceKey& name, WORD language,
                                DWORD& error) {
  const std::vector<ScriptResource>* resources = tbx::win32::ModuleResources(module, error);
  if (!resources) return nullptr;
  std::vector<const ScriptResource*> candidates;
  bool typeFound = false;
  for (const ScriptResource& resource : *resources) {
    if (!(resource.type == type)) continue;
    typeFound = true;
    if (resource.name == name) candidates.push_back(&resource);
  }
  if (candidates.empty()) {
    error = typeFound ? ERROR_RESOURCE_NAME_NOT_FOUND : ERROR_RESOURCE_TYPE_NOT_FOUND;
    return nullptr;
  }
  auto withLanguage = [&](auto matches) -> const ScriptResource* {
    const ScriptResource* best = nullptr;
    for (const ScriptResource* candidate : candidates) {
      if (matches(candidate->language) && (!best || candidate->language < best->language)) best = candidate;
    }
    return best;
  };
  if (const ScriptResource* exact = withLanguage([&](WORD l) { return l == language; })) return exact;
  if (PRIMARYLANGID(language) != kLangNeutral) {
    error = ERROR_RESOURCE_LANG_NOT_FOUND;
    return nullptr;
  }
  for (WORD preferred : {WORD{0x0000}, WORD{0x0400}, WORD{0x0800}, kUserDefaultLanguage}) {
    if (const ScriptResource* found = withLanguage([&](WORD l) { return l == preferred; })) return found;
  }
  if (const ScriptResource* english = withLanguage([](WORD l) { return PRIMARYLANGID(l) == kLangEnglish; })) {
    return english;
  }
  return withLanguage([](WORD) { return true; });
}

}  // namespace

extern "C" HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
  return FindResourceExA(module, type, name, MAKELANGID(0, 0));
}

extern "C" HRSRC WINAPI FindResourceExA(HMODULE module, LPCSTR type, LPCSTR name, WORD language) {
  if (!type || !name) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  DWORD error = ERROR_SUCCESS;
  const ScriptResource* found = FindEntry(module, KeyOf(type), KeyOf(name), language, error);
  if (!found) {
    SetLastError(error);
    return nullptr;
  }
  return reinterpret_cast<HRSRC>(const_cast<ScriptResource*>(found));
}

extern "C" HGLOBAL WINAPI LoadResource(HMODULE, HRSRC resource) {
  if (!resource || !tbx::win32::IsLoadedResource(resource)) return nullptr;
  auto* entry = reinterpret_cast<ScriptResource*>(resource);
  return entry->data.data();
}

extern "C" LPVOID WINAPI LockResource(HGLOBAL data) { return data; }

extern "C" DWORD WINAPI SizeofResource(HMODULE, HRSRC resource) {
  if (!resource || !tbx::win32::IsLoadedResource(resource)) return 0;
  return static_cast<DWORD>(reinterpret_cast<ScriptResource*>(resource)->data.size());
}

extern "C" BOOL WINAPI FreeResource(HGLOBAL) { return FALSE; }

extern "C" int WINAPI LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, int bufferMax) {
  if (bufferMax <= 0) return -1;
  if (!buffer) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  buffer[0] = '\0';
  const unsigned number = id & 0xFFFF;
  ResourceKey type;
  type.number = 6;  // RT_STRING
  ResourceKey block;
  block.number = static_cast<std::uint16_t>(number / 16 + 1);
  DWORD error = ERROR_SUCCESS;
  const ScriptResource* found = FindEntry(instance, type, block, MAKELANGID(0, 0), error);
  if (!found) {
    SetLastError(error);
    return 0;
  }
  // Step over the strings before ours: each is a length and its units.
  const std::vector<std::uint8_t>& data = found->data;
  auto wordAt = [&](std::size_t at) {
    return at + 1 < data.size() ? static_cast<std::size_t>(data[at] | (data[at + 1] << 8)) : std::size_t{0};
  };
  std::size_t at = 0;
  for (unsigned i = 0; i < number % 16; ++i) at += 2 + 2 * wordAt(at);
  std::size_t length = wordAt(at);
  if (at + 2 + 2 * length > data.size()) return 0;
  std::u16string text(length, u'\0');
  for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<char16_t>(wordAt(at + 2 + 2 * i));
  std::string narrow = tbx::win32::Utf16ToCp1252(text);
  std::size_t copied = std::min(narrow.size(), static_cast<std::size_t>(bufferMax - 1));
  std::memcpy(buffer, narrow.data(), copied);
  buffer[copied] = '\0';
  return static_cast<int>(copied);
}
