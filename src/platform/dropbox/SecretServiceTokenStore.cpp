#include "platform/dropbox/SecretServiceTokenStore.h"

#include <qt6keychain/keychain.h>

#include "platform/dropbox/DropboxError.h"

namespace dropbox {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kService = "Corvalis Dropbox"_L1;

/// An entry that is not there is no failure: there is just no token.
MaybeError errorOf(const QKeychain::Job& job) {
  if (job.error() == QKeychain::NoError || job.error() == QKeychain::EntryNotFound)
    return std::nullopt;
  return makeError(ErrorUnavailable, u"The key ring cannot be used: %1"_s.arg(job.errorString()));
}

/// Jobs delete themselves after their end.
template <class Job, class Ended>
void start(Job* job, const QString& key, Ended ended) {
  job->setKey(key);
  job->setInsecureFallback(false);
  QObject::connect(job, &QKeychain::Job::finished, job,
                   [job, ended = std::move(ended)] { ended(*job); });
  job->start();
}

}  // namespace

void SecretServiceTokenStore::read(
    std::function<void(Result<std::optional<Token>>)> completion) const {
  start(new QKeychain::ReadPasswordJob(kService), key_,
        [completion = std::move(completion)](const QKeychain::ReadPasswordJob& job) {
          if (const MaybeError error = errorOf(job)) return completion(tl::unexpected(*error));
          completion(Token::fromStored(job.binaryData()));
        });
}

void SecretServiceTokenStore::write(const Token& token, TokenStore::Completion completion) const {
  auto* job = new QKeychain::WritePasswordJob(kService);
  job->setBinaryData(token.toStored());
  start(job, key_, [completion = std::move(completion)](const QKeychain::Job& ended) {
    completion(errorOf(ended));
  });
}

void SecretServiceTokenStore::remove(TokenStore::Completion completion) const {
  start(new QKeychain::DeletePasswordJob(kService), key_,
        [completion = std::move(completion)](const QKeychain::Job& job) {
          completion(errorOf(job));
        });
}

}  // namespace dropbox
