#pragma once

#include <QImage>
#include <QSize>

#include "platform/base/Error.h"

namespace imaging {

/// The rows with transparency laid on white. Null when there is no memory for them.
QImage opaqueRows(const QImage& rows, QImage::Format format);

/// What is wrong with rows that are to follow `rowsDone` rows of a picture of `picture` device
/// pixels.
MaybeError rowsError(const QImage& rows, QSize picture, int rowsDone);
MaybeError missingRowsError(QSize picture, int rowsDone);
Error noMemoryForRows();

}  // namespace imaging
