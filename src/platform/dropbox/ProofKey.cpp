#include "platform/dropbox/ProofKey.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <array>

namespace dropbox {

namespace {

constexpr auto kBase64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

}  // namespace

QString randomText() {
  std::array<quint32, 8> words{};
  QRandomGenerator::system()->fillRange(words.data(), words.size());
  const QByteArray bytes(reinterpret_cast<const char*>(words.data()), sizeof(words));
  return QString::fromLatin1(bytes.toBase64(kBase64Url));
}

ProofKey ProofKey::create() {
  const QString verifier = randomText();
  const QByteArray hash = QCryptographicHash::hash(verifier.toLatin1(), QCryptographicHash::Sha256);
  return {verifier, QString::fromLatin1(hash.toBase64(kBase64Url))};
}

}  // namespace dropbox
