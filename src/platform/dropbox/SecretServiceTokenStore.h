#pragma once

#include <QString>

#include "platform/dropbox/TokenStore.h"

namespace dropbox {

/// The token in the desktop's key ring (Secret Service, or KWallet on its own desktop).
class SecretServiceTokenStore {
 public:
  /// The key ring knows the token by this name.
  explicit SecretServiceTokenStore(QString key) : key_(std::move(key)) {}

  /// Each ends in one callback on the main thread, never before it has returned. A key ring that
  /// asks the user to unlock it takes as long as the user.
  void read(std::function<void(Result<std::optional<Token>>)> completion) const;
  void write(const Token& token, TokenStore::Completion completion) const;
  void remove(TokenStore::Completion completion) const;

 private:
  QString key_;
};

}  // namespace dropbox
