#pragma once

#include <gtest/gtest.h>
#include <QImage>
#include <QString>
#include <QTemporaryDir>

#include "platform/imaging/PictureConversion.h"
#include "platform/imaging/PictureWriter.h"

namespace imaging {

/// Like a page: letters of one pixel's strokes on white above, a photograph with noise below.
QImage pageLike(QSize size);
/// Each row has a colour of its own that tells its number.
QImage numberedRows(int width, int first, int rows);
int numberOfRow(QRgb pixel);

/// The picture of any file that this system writes; null when it cannot be read.
QImage decoded(const QString& path);
/// Largest and mean difference of a channel.
struct Difference {
  int largest = 0;
  double mean = 0;
};
Difference difference(const QImage& left, const QImage& right);

QByteArray bytesOf(const QString& path);
void writeBytes(const QString& path, const QByteArray& bytes);

/// Appends the rows in pieces of uneven height and finishes.
MaybeError writePicture(const QString& path, const QImage& picture, BitmapFileType type,
                        const PictureOptions& options = {});

/// A folder for the files of one test.
class PictureTest : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }
  /// Hidden ones too.
  QStringList filesInFolder() const;

 private:
  QTemporaryDir folder_;
};

}  // namespace imaging
