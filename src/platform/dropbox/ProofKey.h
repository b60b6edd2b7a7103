#pragma once

#include <QString>

namespace dropbox {

/// The secret of one authorization (RFC 7636): `verifier` stays here until the code is exchanged,
/// `challenge` (its SHA-256, base64url) goes with the request.
struct ProofKey {
  QString verifier;
  QString challenge;

  static ProofKey create();
};

/// 256 bits from the system's generator as 43 base64url characters.
QString randomText();

}  // namespace dropbox
