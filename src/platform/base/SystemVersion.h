#pragma once

#include <cstdint>
#include <optional>

/// A release of the operating system's services.
struct SystemVersion {
  std::int64_t major = 0;
  std::int64_t minor = 0;
  std::int64_t patch = 0;
};

/// The release whose behaviour this platform layer provides; none when it cannot be told.
std::optional<SystemVersion> systemVersion();

/// Lets a test stand on another release (or on none), until it is destroyed. One at a time.
class SystemVersionOverride {
 public:
  explicit SystemVersionOverride(std::optional<SystemVersion> version);
  ~SystemVersionOverride();
  SystemVersionOverride(const SystemVersionOverride&) = delete;
  SystemVersionOverride& operator=(const SystemVersionOverride&) = delete;
};
