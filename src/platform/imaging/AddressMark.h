#pragma once

#include <QByteArray>
#include <QString>

#include "platform/base/Error.h"
#include "platform/imaging/BitmapFormat.h"
#include "platform/imaging/PartFile.h"
#include "platform/imaging/PictureWriter.h"

namespace imaging {

/// The address to keep in a file. Empty when there is none or it is longer than every format can
/// hold: an address that carries its document ("data:") says nothing about where the picture is
/// from.
QByteArray addressToKeep(const PictureMetadata& metadata);

/// The address as dc:source of an XMP packet (ISO 16684-1).
QByteArray xmpPacket(const QByteArray& address);

/// Adds the address to a GIF or JPEG 2000 file that is otherwise complete; nothing to do for other
/// places.
MaybeError appendAddress(PartFile& file, AddressPlace place, const QByteArray& address);

}  // namespace imaging
