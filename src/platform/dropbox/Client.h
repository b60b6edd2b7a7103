#pragma once

#include <memory>

#include "platform/dropbox/FilesRoutes.h"

namespace dropbox {

/// A linked user's account. May be held past the unlinking: its requests then fail. Any thread.
class Client {
 public:
  explicit Client(std::shared_ptr<Connection> connection);

  const FilesRoutes& filesRoutes() const { return filesRoutes_; }

 private:
  FilesRoutes filesRoutes_;
};

/// A linked team. Files belong to its members. Any thread.
class TeamClient {
 public:
  explicit TeamClient(std::shared_ptr<Connection> connection);

  /// The files of one member, by the service's team member id.
  std::shared_ptr<Client> clientForMember(const QString& teamMemberId) const;

 private:
  std::shared_ptr<Connection> connection_;
};

}  // namespace dropbox
