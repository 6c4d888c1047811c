#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tbxutl/config/registry.h"

namespace {

// The registry of this program lives in a temporary folder of its own, set
// before the first registry call and removed at exit.
class RegistryFolder {
 public:
  RegistryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tbxutl-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    m_path = pattern;
    setenv("TBXUTL_REGISTRY_DIR", m_path.c_str(), 1);
  }
  ~RegistryFolder() {
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
  }

 private:
  std::string m_path;
};

const RegistryFolder folder;

constexpr char kBase[] = "HKEY_CURRENT_USER\\Software\\TbxutlBench";

// A whole open-read-close round of a value that exists.
void BM_RegReadInt(benchmark::State& state) {
  WUTLRegistry::RegWriteString("\\ReadInt", "n", "42", kBase);
  for (auto _ : state) {
    benchmark::DoNotOptimize(WUTLRegistry::RegReadInt("\\ReadInt", "n", 0, kBase));
  }
}
BENCHMARK(BM_RegReadInt);

// One string value written through an open key.
void BM_SetValueString(benchmark::State& state) {
  WUTLRegistry key((std::string(kBase) + "\\SetValue").c_str(), KEY_READ | KEY_WRITE, 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(key.SetValue("s", "C:\\Program Files\\Tobix\\Data"));
  }
}
BENCHMARK(BM_SetValueString);

// Every subkey of a key with 1,000 of them, by index.
void BM_Enumerate1000Subkeys(benchmark::State& state) {
  const std::string path = std::string(kBase) + "\\Enumerate";
  for (int i = 0; i < 1000; ++i) {
    WUTLRegistry::CreateKey((path + "\\Key" + std::to_string(i)).c_str(), KEY_WRITE, 0);
  }
  WUTLRegistry key(path.c_str(), KEY_READ);
  CString name;
  for (auto _ : state) {
    DWORD index = 0;
    while (key.GetNextSubkey(name, index) == ERROR_SUCCESS) ++index;
    if (index != 1000) state.SkipWithError("not 1,000 subkeys");
  }
  state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(BM_Enumerate1000Subkeys);

}  // namespace
