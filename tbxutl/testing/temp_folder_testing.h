#pragma once
// A fresh folder under the system's temporary folder for one test, removed
// with everything in it when the object goes.

#include <string>

namespace tbx::testing {

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The folder, in the platform's form, without a trailing separator.
  const std::string& path() const { return m_path; }
  // path() + separator + name.
  std::string File(const std::string& name) const;

 private:
  std::string m_path;
};

}  // namespace tbx::testing
