#pragma once

#include <QRgb>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>

#include "platform/imaging/PictureStrips.h"

namespace samples {

/// A document of one page (612 x 792 points) for each text, the text in its middle.
QString pages(const QStringList& texts);

/// A document from the objects' text, numbered from 1, object 1 its catalog. The cross-reference
/// table is right.
QString fromObjects(const QStringList& objects, const QString& trailer = {});

/// Two pages (objects 3 and 4) that inherit their size; objects from 5 on are the caller's.
QString twoPages(const QString& catalog, const QString& first, const QString& second,
                 const QStringList& more = {}, const QString& trailer = {});

/// A picture file as the page engine's pictures are stored, and where its strips are.
imaging::PictureStrips picture(QSize size, const std::function<QRgb(int x, int y)>& pixel);

/// An encrypted copy of `path`; the password for reading is `password`.
QString encrypted(const QString& path, const QString& password);

}  // namespace samples
