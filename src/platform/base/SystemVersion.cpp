#include "platform/base/SystemVersion.h"

#include <mutex>

namespace {

constexpr SystemVersion providedVersion{10, 15, 7};

struct Current {
  std::mutex mutex;
  std::optional<SystemVersion> version = providedVersion;
};

Current& current() {
  static Current instance;
  return instance;
}

void replace(std::optional<SystemVersion> version) {
  std::lock_guard lock(current().mutex);
  current().version = version;
}

}  // namespace

std::optional<SystemVersion> systemVersion() {
  std::lock_guard lock(current().mutex);
  return current().version;
}

SystemVersionOverride::SystemVersionOverride(std::optional<SystemVersion> version) {
  replace(version);
}

SystemVersionOverride::~SystemVersionOverride() {
  replace(providedVersion);
}
