#include "tbxutl/platform/win32/kernel32/modules.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>

#include "tbxutl/platform/win32/kernel32/last_error.h"
#include "tbxutl/platform/win32/kernel32/native_path.h"
#include "tbxutl/platform/win32/winerror.h"

namespace tbx::win32 {

// The library's own resource script, embedded when the library is built.
extern const char kLibraryResourceScriptName[];
extern const unsigned char kLibraryResourceScript[];
extern const std::size_t kLibraryResourceScriptSize;

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLibraryWindowsName = "tbxutl.dll";

enum class Kind { Program, Library, Image, DataFile, ImageResource };

struct Module {
  Kind kind = Kind::Image;
  HMODULE handle = nullptr;
  std::string fileName;    // what GetModuleFileNameA answers
  std::string baseName;    // its file name part
  std::string scriptPath;  // the script read, for resource libraries
  unsigned references = 1;
  bool resourcesRead = false;
  std::vector<ScriptResource> resources;
};


bool SameNameIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
           return lower(x) == lower(y);
         });
}

std::string_view FileNamePart(std::string_view path) {
  std::size_t at = path.find_last_of("\\/");
  return at == std::string_view::npos ? path : path.substr(at + 1);
}

bool HasFolder(std::string_view name) { return name.find_first_of("\\/") != std::string_view::npos; }

// Windows adds ".dll" to a name without an extension; a trailing "." says
// that the name has none.
std::string WithExtension(std::string_view name) {
  std::string result(name);
  std::string_view file = FileNamePart(name);
  if (!file.empty() && file.back() == '.') {
    result.pop_back();
  } else if (file.find('.') == std::string_view::npos) {
    result += ".dll";
  }
  return result;
}

// The first loadable object is the program; its handle is where its image
// (the segment that holds the ELF header) is mapped, as a Windows module
// handle is its image base.
int FindProgramBase(dl_phdr_info* info, std::size_t, void* data) {
  auto* base = static_cast<std::uintptr_t*>(data);
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)& header = info->dlpi_phdr[i];
    if (header.p_type == PT_LOAD && header.p_offset == 0) {
      *base = info->dlpi_addr + header.p_vaddr;
      return 1;
    }
  }
  *base = reinterpret_cast<std::uintptr_t>(info->dlpi_phdr);
  return 1;
}

int g_anchor = 0;  // an address inside this library

class Registry {
 public:
  static Registry& Instance() {
    // Never destroyed: modules may still be used while the process exits.
    static Registry* registry = new Registry;
    return *registry;
  }

  std::mutex mutex;

  Module* Find(HMODULE handle) {
    if (!handle) return program_;
    for (auto& module : modules_) {
      if (module->handle == handle) return module.get();
    }
    return nullptr;
  }

  Module* Program() { return program_; }

  // A module that is loaded (as an image) under `name`, which has no folder.
  Module* FindByBaseName(std::string_view name) {
    for (auto& module : modules_) {
      if (module->kind == Kind::DataFile || module->kind == Kind::ImageResource) continue;
      if (SameNameIgnoringCase(module->baseName, name) ||
          (module->kind == Kind::Library && SameNameIgnoringCase(kLibraryWindowsName, name))) {
        return module.get();
      }
    }
    return nullptr;
  }

  Module* FindByFileName(std::string_view fileName) {
    for (auto& module : modules_) {
      if (module->kind == Kind::DataFile || module->kind == Kind::ImageResource) continue;
      if (module->fileName == fileName) return module.get();
    }
    return nullptr;
  }

  Module* FindImageOfScript(const std::string& scriptPath) {
    for (auto& module : modules_) {
      if (module->kind == Kind::Image && module->scriptPath == scriptPath) return module.get();
    }
    return nullptr;
  }

  HMODULE Add(std::unique_ptr<Module> module) {
    std::uintptr_t tag = module->kind == Kind::DataFile ? 1 : module->kind == Kind::ImageResource ? 2 : 0;
    module->handle = reinterpret_cast<HMODULE>(reinterpret_cast<std::uintptr_t>(module.get()) | tag);
    modules_.push_back(std::move(module));
    return modules_.back()->handle;
  }

  std::unique_ptr<Module> Remove(Module* module) {
    auto it = std::find_if(modules_.begin(), modules_.end(), [&](const auto& m) { return m.get() == module; });
    std::unique_ptr<Module> removed = std::move(*it);
    modules_.erase(it);
    return removed;
  }

  bool Owns(const void* resource) {
    std::less<const void*> before;
    for (auto& module : modules_) {
      if (module->resources.empty()) continue;
      const void* first = module->resources.data();
      const void* end = module->resources.data() + module->resources.size();
      if (!before(resource, first) && before(resource, end)) return true;
    }
    return false;
  }

 private:
  Registry() {
    auto program = std::make_unique<Module>();
    program->kind = Kind::Program;
    std::uintptr_t base = 0;
    dl_iterate_phdr(FindProgramBase, &base);
    program->handle = reinterpret_cast<HMODULE>(base);
    std::error_code ec;
    program->fileName = fs::read_symlink("/proc/self/exe", ec).string();
    program->baseName = std::string(FileNamePart(program->fileName));
    program->resourcesRead = true;
    program_ = program.get();
    modules_.push_back(std::move(program));

    auto library = std::make_unique<Module>();
    library->kind = Kind::Library;
    Dl_info info{};
    if (dladdr(&g_anchor, &info) != 0) {
      library->handle = static_cast<HMODULE>(info.dli_fbase);
      if (info.dli_fname) {
        fs::path path = fs::weakly_canonical(info.dli_fname, ec);
        library->fileName = ec ? std::string(info.dli_fname) : path.string();
      }
    }
    if (!library->handle) library->handle = reinterpret_cast<HMODULE>(&g_anchor);
    library->baseName = std::string(FileNamePart(library->fileName));
    modules_.push_back(std::move(library));
  }

  std::vector<std::unique_ptr<Module>> modules_;
  Module* program_ = nullptr;
};

void ReadLibraryResources(Module& module) {
  module.resourcesRead = true;
  std::string_view text(reinterpret_cast<const char*>(kLibraryResourceScript), kLibraryResourceScriptSize);
  ScriptError error;
  auto resources = ReadResourceScriptText(text, kLibraryResourceScriptName, error);
  if (!resources) {
    std::fprintf(stderr, "tbxutl: the built-in texts cannot be read: %s\n", error.Describe().c_str());
    return;
  }
  module.resources = std::move(*resources);
}

// The script file "X.rc" of a library path "X.dll" (native), or "". The
// last part of the name may differ in case from the file's.
std::string FindScriptFile(const std::string& nativeLibraryPath) {
  fs::path path(nativeLibraryPath);
  if (!SameNameIgnoringCase(path.extension().string(), ".dll")) return std::string();
  path.replace_extension(".rc");
  std::error_code ec;
  if (!fs::is_regular_file(path, ec)) {
    fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    std::string wanted = path.filename().string();
    path.clear();
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
      if (SameNameIgnoringCase(it->path().filename().string(), wanted) && it->is_regular_file(ec)) {
        path = it->path();
        break;
      }
    }
    if (path.empty()) return std::string();
  }
  fs::path canonical = fs::canonical(path, ec);
  return ec ? std::string() : canonical.string();
}

std::string LocateScript(const std::string& name) {
  if (HasFolder(name)) {
    std::optional<std::string> native = ToNativePath(name);
    return native ? FindScriptFile(*native) : std::string();
  }
  std::string programFolder;
  {
    std::lock_guard lock(Registry::Instance().mutex);
    programFolder = fs::path(Registry::Instance().Program()->fileName).parent_path().string();
  }
  if (!programFolder.empty()) {
    std::string found = FindScriptFile(programFolder + "/" + name);
    if (!found.empty()) return found;
  }
  return FindScriptFile(name);
}

}  // namespace

const std::vector<ScriptResource>* ModuleResources(HMODULE handle, DWORD& error) {
  Registry& registry = Registry::Instance();
  std::lock_guard lock(registry.mutex);
  Module* module = registry.Find(handle);
  if (module && module->kind == Kind::Library && !module->resourcesRead) ReadLibraryResources(*module);
  if (!module || module->resources.empty()) {
    error = ERROR_RESOURCE_DATA_NOT_FOUND;
    return nullptr;
  }
  return &module->resources;
}

bool IsLoadedResource(const void* resource) {
  Registry& registry = Registry::Instance();
  std::lock_guard lock(registry.mutex);
  return resource && registry.Owns(resource);
}

}  // namespace tbx::win32

using tbx::win32::Kind;
using tbx::win32::Module;
using tbx::win32::Registry;

extern "C" HMODULE WINAPI LoadLibraryA(LPCSTR fileName) { return LoadLibraryExA(fileName, nullptr, 0); }

extern "C" HMODULE WINAPI LoadLibraryExA(LPCSTR fileName, HANDLE, DWORD flags) {
  bool asData = (flags & (LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE |
                          LOAD_LIBRARY_AS_IMAGE_RESOURCE)) != 0;
  if (!fileName || !*fileName) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  std::string name = tbx::win32::WithExtension(fileName);
  Registry& registry = Registry::Instance();
  if (!tbx::win32::HasFolder(name)) {
    std::lock_guard lock(registry.mutex);
    if (Module* loaded = registry.FindByBaseName(name)) {
      if (loaded->kind == Kind::Image) ++loaded->references;
      return loaded->handle;
    }
  }
  std::string script = tbx::win32::LocateScript(name);
  if (script.empty()) {
    SetLastError(asData ? ERROR_FILE_NOT_FOUND : ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  auto useLoaded = [&]() -> HMODULE {
    Module* loaded = registry.FindImageOfScript(script);
    if (!loaded) return nullptr;
    ++loaded->references;
    return loaded->handle;
  };
  {
    std::lock_guard lock(registry.mutex);
    if (HMODULE handle = useLoaded()) return handle;
  }

  tbx::win32::ScriptError error;
  auto resources = tbx::win32::ReadResourceScriptFile(script, error);
  if (!resources) {
    std::fprintf(stderr, "tbxutl: resource library %s cannot be loaded: %s\n", fileName, error.Describe().c_str());
    SetLastError(ERROR_BAD_EXE_FORMAT);
    return nullptr;
  }
  auto module = std::make_unique<Module>();
  module->kind = (flags & LOAD_LIBRARY_AS_IMAGE_RESOURCE) ? Kind::ImageResource
                 : asData                                 ? Kind::DataFile
                                                          : Kind::Image;
  module->scriptPath = script;
  module->fileName = std::filesystem::path(script).replace_extension(".dll").string();
  module->baseName = std::string(tbx::win32::FileNamePart(module->fileName));
  module->resourcesRead = true;
  module->resources = std::move(*resources);

  std::lock_guard lock(registry.mutex);
  if (HMODULE handle = useLoaded()) return handle;  // loaded meanwhile by another thread
  return registry.Add(std::move(module));
}

extern "C" BOOL WINAPI FreeLibrary(HMODULE handle) {
  if (!handle) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  Registry& registry = Registry::Instance();
  std::unique_ptr<Module> unloaded;  // destroyed after the lock is released
  std::lock_guard lock(registry.mutex);
  Module* module = registry.Find(handle);
  if (!module) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return FALSE;
  }
  if (module->kind == Kind::Program || module->kind == Kind::Library) return TRUE;
  if (module->kind != Kind::Image || --module->references == 0) unloaded = registry.Remove(module);
  return TRUE;
}

extern "C" HMODULE WINAPI GetModuleHandleA(LPCSTR moduleName) {
  Registry& registry = Registry::Instance();
  if (!moduleName) {
    std::lock_guard lock(registry.mutex);
    return registry.Program()->handle;
  }
  std::string name = tbx::win32::WithExtension(moduleName);
  Module* module = nullptr;
  std::lock_guard lock(registry.mutex);
  if (tbx::win32::HasFolder(name)) {
    std::optional<std::string> native = tbx::win32::ToNativePath(name);
    if (native) {
      std::error_code ec;
      std::filesystem::path absolute = std::filesystem::absolute(*native, ec).lexically_normal();
      if (!ec) module = registry.FindByFileName(absolute.string());
    }
  } else {
    module = registry.FindByBaseName(name);
  }
  if (!module) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  return module->handle;
}

extern "C" DWORD WINAPI GetModuleFileNameA(HMODULE handle, LPSTR fileName, DWORD size) {
  std::string name;
  {
    Registry& registry = Registry::Instance();
    std::lock_guard lock(registry.mutex);
    Module* module = registry.Find(handle);
    if (!module || module->kind == Kind::DataFile || module->kind == Kind::ImageResource) {
      SetLastError(ERROR_MOD_NOT_FOUND);
      return 0;
    }
    name = module->fileName;
  }
  if (size == 0 || !fileName) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  if (name.size() < size) {
    std::memcpy(fileName, name.c_str(), name.size() + 1);
    return static_cast<DWORD>(name.size());
  }
  std::memcpy(fileName, name.data(), size - 1);
  fileName[size - 1] = '\0';
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return size;
}
