#pragma once

#include <QSizeF>
#include <QUrl>

#include "platform/imaging/PictureStrips.h"
#include "platform/rendering/TextLayer.h"

/// A page rendered at its full height: a PNG file of RGB rows, the size in points of the document
/// that it shows, and what the page says where.
struct PagePicture {
  imaging::PictureStrips strips;
  QSizeF size;
  rendering::TextLayer text;
};
