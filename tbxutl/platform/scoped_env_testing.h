#pragma once
// Tests only: sets an environment variable (null: removes it) for the life of
// an object. Windows's C runtime holds no empty values: there "" removes it.

#include <cstdlib>
#include <optional>
#include <string>

namespace tbx::testing {

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_old = old;
    Put(value);
  }
  ~ScopedEnv() { Put(m_old ? m_old->c_str() : nullptr); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  void Put(const char* value) {
#if defined(_WIN32)
    _putenv_s(m_name.c_str(), value != nullptr ? value : "");
#else
    value != nullptr ? setenv(m_name.c_str(), value, 1) : unsetenv(m_name.c_str());
#endif
  }

  std::string m_name;
  std::optional<std::string> m_old;
};

}  // namespace tbx::testing
