#include "platform/dropbox/StandardTokenStore.h"

#include <QStandardPaths>

#include "platform/base/Log.h"

namespace dropbox {

using namespace Qt::StringLiterals;

void StandardTokenStore::enqueue(std::function<void()> operation) {
  operations_.push_back(std::move(operation));
  if (operations_.size() == 1) operations_.front()();
}

void StandardTokenStore::ended() {
  operations_.pop_front();
  if (!operations_.empty()) operations_.front()();
}

void StandardTokenStore::read(ReadCompletion completion) {
  enqueue([self = shared_from_this(), completion = std::move(completion)] {
    self->keyRing_.read([self, completion](const Result<std::optional<Token>>& stored) {
      if (!stored) logLine(u"Dropbox token: %1"_s.arg(stored.error().localizedDescription));
      const std::optional<Token> token = stored && *stored ? *stored : self->file_.read();
      self->ended();
      completion(token);
    });
  });
}

void StandardTokenStore::write(const Token& token, Completion completion) {
  enqueue([self = shared_from_this(), token, completion = std::move(completion)] {
    self->keyRing_.write(token, [self, token, completion](MaybeError error) {
      if (error)
        error = self->writeFile(token, *error);
      else
        self->removeFile();
      self->ended();
      completion(error);
    });
  });
}

void StandardTokenStore::remove(Completion completion) {
  enqueue([self = shared_from_this(), completion = std::move(completion)] {
    const MaybeError fileError = self->file_.remove();
    self->keyRing_.remove([self, fileError, completion](const MaybeError& error) {
      // Without a key ring the file was all there was.
      if (error) logLine(u"Dropbox token: %1"_s.arg(error->localizedDescription));
      self->ended();
      completion(fileError);
    });
  });
}

void StandardTokenStore::removeFile() const {
  if (const MaybeError error = file_.remove()) logLine(error->localizedDescription);
}

MaybeError StandardTokenStore::writeFile(const Token& token, const Error& keyRingError) const {
  logLine(u"%1. The Dropbox token goes to the file “%2”, which only you can read."_s.arg(
      keyRingError.localizedDescription, file_.path()));
  return file_.write(token);
}

std::shared_ptr<TokenStore> makeStandardTokenStore(const QString& applicationKey) {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
  return std::make_shared<StandardTokenStore>(applicationKey, folder + u"/dropbox-token"_s);
}

}  // namespace dropbox
