#include "platform/dropbox/Client.h"

#include "platform/dropbox/Connection.h"

namespace dropbox {

Client::Client(std::shared_ptr<Connection> connection) : filesRoutes_(std::move(connection)) {}

TeamClient::TeamClient(std::shared_ptr<Connection> connection)
    : connection_(std::move(connection)) {}

std::shared_ptr<Client> TeamClient::clientForMember(const QString& teamMemberId) const {
  return std::make_shared<Client>(connection_->forMember(teamMemberId));
}

}  // namespace dropbox
