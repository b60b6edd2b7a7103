#pragma once

#include <QString>
#include <deque>
#include <functional>
#include <memory>

#include "platform/dropbox/FileTokenStore.h"
#include "platform/dropbox/SecretServiceTokenStore.h"
#include "platform/dropbox/TokenStore.h"

namespace dropbox {

/// The key ring, with a private file for machines without one. Operations run one after the other:
/// a removal must not be overtaken by a writing that fell back to the file late.
class StandardTokenStore : public TokenStore,
                           public std::enable_shared_from_this<StandardTokenStore> {
 public:
  StandardTokenStore(const QString& key, const QString& filePath)
      : keyRing_(key), file_(filePath) {}

  void read(ReadCompletion completion) override;
  void write(const Token& token, Completion completion) override;
  void remove(Completion completion) override;

 private:
  void enqueue(std::function<void()> operation);
  /// Called by each operation when it has ended, before its completion.
  void ended();

  void removeFile() const;
  MaybeError writeFile(const Token& token, const Error& keyRingError) const;

  SecretServiceTokenStore keyRing_;
  FileTokenStore file_;
  std::deque<std::function<void()>> operations_;
};

}  // namespace dropbox
