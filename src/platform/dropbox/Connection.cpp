#include "platform/dropbox/Connection.h"

namespace dropbox {

std::shared_ptr<Connection> Connection::forMember(const QString& memberId) const {
  auto connection = std::make_shared<Connection>(*this);
  connection->teamMemberId = memberId;
  return connection;
}

}  // namespace dropbox
