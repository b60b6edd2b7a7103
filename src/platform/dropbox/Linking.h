#pragma once

#include <QUrl>
#include <optional>

#include "platform/base/Error.h"
#include "platform/dropbox/ProofKey.h"
#include "platform/dropbox/RetriedPost.h"

namespace dropbox {

/// One authorization from the address that the user's browser opens to the code that comes back
/// (RFC 6749, section 4.1, with RFC 7636 in place of a client secret).
class Linking {
 public:
  explicit Linking(const QString& appKey);

  QUrl authorizationAddress(const QUrl& endpoint) const;
  /// True for a redirect that answers this authorization and no other.
  bool isAnsweredBy(const QString& state) const { return state == state_; }
  PostRequest exchange(const QUrl& tokenEndpoint, const QString& code) const;

 private:
  QString appKey_;
  QString state_;
  ProofKey proofKey_;
};

/// What the browser brought back.
struct Redirect {
  QString code;
  QString state;
  /// The refusal (RFC 6749, section 4.1.2.1): "access_denied" when the user said no.
  QString error;
  QString errorDescription;
  bool isCancelled = false;
};

/// None when the address is not in the application's own redirect scheme, "db-<key>".
std::optional<Redirect> readRedirect(const QUrl& url, const QString& appKey);

}  // namespace dropbox
