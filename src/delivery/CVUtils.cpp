#include "delivery/CVUtils.h"

#include "platform/base/Log.h"
#include "platform/base/SystemVersion.h"

using namespace Qt::StringLiterals;

CVUtils::CVUtils(Services services) : services_(std::move(services)) {}

CVUtils::~CVUtils() = default;

CVOSXVersion CVUtils::getOSXVersion() const {
  const auto version = systemVersion();
  return version ? CVOSXVersion(*version) : CVOSXVersion();
}

std::shared_ptr<CVAppDelegate> CVUtils::getAppDelegate() const {
  return appDelegate_.lock();
}

void CVUtils::setAppDelegate(std::weak_ptr<CVAppDelegate> appDelegate) {
  appDelegate_ = std::move(appDelegate);
}

void CVUtils::displayOKAlertWithTitle(const QString& title, const QString& message) const {
  if (!services_.alerts) return logLine(title + u": "_s + message);
  services_.alerts->displayOKAlertWithTitle(title, message);
}
