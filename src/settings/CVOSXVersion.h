#pragma once

#include <cstdint>

#include "platform/base/SystemVersion.h"

/// The release of the operating system's services, by which callers choose their behaviour.
class CVOSXVersion {
 public:
  CVOSXVersion() = default;
  explicit CVOSXVersion(const SystemVersion& version);

  std::int64_t majorVersion() const { return majorVersion_; }
  void setMajorVersion(std::int64_t version) { majorVersion_ = version; }
  std::int64_t minorVersion() const { return minorVersion_; }
  void setMinorVersion(std::int64_t version) { minorVersion_ = version; }
  std::int64_t patchVersion() const { return patchVersion_; }
  void setPatchVersion(std::int64_t version) { patchVersion_ = version; }

 private:
  std::int64_t majorVersion_ = 0;
  std::int64_t minorVersion_ = 0;
  std::int64_t patchVersion_ = 0;
};
