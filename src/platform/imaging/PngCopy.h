#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include "platform/base/Error.h"

namespace imaging {

bool isPng(QIODevice& source);

/// Copies a PNG file as it is but for what it says of its source and of its strips: an address that
/// is given takes the place of the one it has. Every chunk's checksum is tested on the way, so that
/// a damaged file is refused.
MaybeError copyPng(QIODevice& source, const QString& targetPath, const QByteArray& address);

}  // namespace imaging
