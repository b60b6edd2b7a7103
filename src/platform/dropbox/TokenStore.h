#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/base/Error.h"
#include "platform/dropbox/Token.h"

namespace dropbox {

/// Where the authorization lives between runs of the program. Called on the main thread; callbacks
/// come on the main thread, exactly once, and never before the operation has returned.
class TokenStore {
 public:
  using ReadCompletion = std::function<void(std::optional<Token>)>;
  using Completion = std::function<void(MaybeError)>;

  virtual ~TokenStore() = default;

  /// None when nothing is stored or it cannot be read (the log says why).
  virtual void read(ReadCompletion completion) = 0;
  virtual void write(const Token& token, Completion completion) = 0;
  /// No error when nothing was stored.
  virtual void remove(Completion completion) = 0;
};

/// The desktop's secret service when there is one, else a file that only the user can read
/// ("dropbox-token" in the program's configuration folder); the log says when the file is used. A
/// token that reached the secret service leaves no file behind.
std::shared_ptr<TokenStore> makeStandardTokenStore(const QString& applicationKey);

}  // namespace dropbox
