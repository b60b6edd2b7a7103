#pragma once

#include <memory>

#include "platform/dropbox/Authorization.h"
#include "platform/dropbox/Endpoints.h"
#include "platform/dropbox/RetryPolicy.h"
#include "platform/dropbox/Transport.h"
#include "platform/dropbox/UploadLimits.h"

namespace dropbox {

/// All that a client's requests need. Shared by the clients of one account; its parts are used on
/// the main thread only.
class Connection {
 public:
  std::shared_ptr<Transport> transport;
  std::shared_ptr<Authorization> authorization;
  Endpoints endpoints;
  RetryPolicy retry;
  UploadLimits limits;
  /// The team member that the requests are made for; empty for a user's account.
  QString teamMemberId;

  std::shared_ptr<Connection> forMember(const QString& memberId) const;
};

}  // namespace dropbox
