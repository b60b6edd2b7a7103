#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace dropbox {

/// Compact JSON fit for an HTTP header: all of it is printable ASCII, other characters stand as
/// \uXXXX (those beyond the basic plane as surrogate pairs), the delete character as well.
QByteArray asciiJson(const QJsonObject& object);

}  // namespace dropbox
