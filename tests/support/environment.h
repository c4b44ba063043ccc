#pragma once
// Environment variables that are set during a test.

#include <cstdlib>
#include <optional>
#include <string>

// Sets the variable, or unsets it if `value` is null. The destructor restores the old value.
class EnvironmentVariable {
public:
  EnvironmentVariable(const char *variable, const char *value) : name(variable) {
    if (const char *present = std::getenv(variable)) {
      old_value = present;
    }
    put(value);
  }
  ~EnvironmentVariable() { put(old_value ? old_value->c_str() : nullptr); }
  EnvironmentVariable(const EnvironmentVariable &) = delete;
  EnvironmentVariable &operator=(const EnvironmentVariable &) = delete;

private:
  void put(const char *value) const {
    if (value == nullptr) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value, 1);
    }
  }

  std::string name;
  std::optional<std::string> old_value;
};

// Sets the user's locale and unsets the other variables that determine the user's language.
class UserLocale {
public:
  explicit UserLocale(const char *locale)
      : language("LANGUAGE", nullptr), all("LC_ALL", locale),
        chosen("VANTORELLE_USER_LANGUAGE", nullptr) {}

private:
  EnvironmentVariable language;
  EnvironmentVariable all;
  EnvironmentVariable chosen;
};
