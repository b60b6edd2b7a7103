#pragma once

#include <memory>

#include "delivery/CVUtils.h"
#include "settings/CVObjectRepository.h"

class CVAppDelegate;

namespace ui {

/// The application delegate, as the shared utilities know it; empty before start-up.
inline std::shared_ptr<CVAppDelegate> applicationDelegate() {
  const auto utils = CVObjectRepository::singleton().getUtils();
  return utils ? utils->getAppDelegate() : nullptr;
}

}  // namespace ui
