#include "tbxutl/testing/temp_folder_testing.h"

#include <atomic>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>

namespace tbx::testing {

TempFolder::TempFolder() {
  namespace fs = std::filesystem;
  static std::atomic<unsigned> counter{0};
  std::random_device random;
  for (int attempt = 0; attempt < 100; ++attempt) {
    fs::path candidate = fs::temp_directory_path() /
                         ("tbxutl-test-" + std::to_string(random()) + "-" + std::to_string(counter++));
    std::error_code error;
    if (fs::create_directory(candidate, error)) {
      m_path = candidate.string();
      return;
    }
  }
  throw std::runtime_error("cannot create a temporary folder");
}

TempFolder::~TempFolder() {
  std::error_code error;
  std::filesystem::remove_all(m_path, error);
}

std::string TempFolder::File(const std::string& name) const {
  return (std::filesystem::path(m_path) / name).string();
}

}  // namespace tbx::testing
