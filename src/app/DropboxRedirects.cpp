#include "app/DropboxRedirects.h"

#include "platform/base/Log.h"
#include "platform/dropbox/ClientsManager.h"

using namespace Qt::StringLiterals;

namespace {

CVRedirectOutcome outcomeOf(const dropbox::AuthorizationResult& result) {
  switch (result.outcome) {
    case dropbox::AuthorizationOutcome::Success:
      return CVRedirectOutcome::Success;
    case dropbox::AuthorizationOutcome::Cancel:
      return CVRedirectOutcome::Cancel;
    case dropbox::AuthorizationOutcome::Error:
      break;
  }
  if (result.error) logLine(u"Dropbox linking failed: "_s + result.error->localizedDescription);
  return CVRedirectOutcome::Error;
}

}  // namespace

void DropboxRedirects::setupDropBox() {
  dropbox::ClientsManager::shared().setupWithAppKeyDesktop(u"k3r8tq0vz5mha2x"_s);
}

bool DropboxRedirects::handleRedirectURL(const QUrl& url, Completion completion) {
  return dropbox::ClientsManager::shared().handleRedirectURL(
      url, [completion = std::move(completion)](const dropbox::AuthorizationResult& result) {
        completion(outcomeOf(result));
      });
}
