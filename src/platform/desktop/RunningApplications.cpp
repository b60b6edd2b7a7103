#include "platform/desktop/RunningApplications.h"

#include "platform/desktop/BrowserProfiles.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

class LinuxApplications : public RunningApplications {
 public:
  bool isRunning(const QString& bundleIdentifier) const override {
    return bundleIdentifier == u"com.google.Chrome"_s && !chromiumProfileFoldersInUse().isEmpty();
  }
};

}  // namespace

std::shared_ptr<RunningApplications> RunningApplications::create() {
  return std::make_shared<LinuxApplications>();
}

}  // namespace desktop
