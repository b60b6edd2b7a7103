#include "platform/pdf/internal/StripPainter.h"

#include <QtEndian>
#include <algorithm>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/StripRows.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

constexpr qint64 copyPiece = 1 << 20;

/// How far a bridge reaches to both sides of a seam, in points: a device pixel at small zooms.
constexpr double bridgeReach = 4;

QByteArray clip(const QRectF& area) {
  return number(area.x()) + ' ' + number(area.y()) + ' ' + number(area.width()) + ' ' +
         number(area.height()) + " re W n ";
}

QByteArray image(const QRectF& area, const QByteArray& name) {
  return number(area.width()) + " 0 0 " + number(area.height()) + ' ' + number(area.x()) + ' ' +
         number(area.y()) + " cm " + name + " Do Q\n";
}

QByteArray named(char letter, size_t index) {
  return QByteArray("/") + letter + QByteArray::number(static_cast<qint64>(index));
}

}  // namespace

StripPainter::StripPainter(SequentialFile& file, const imaging::PictureStrips& picture)
    : file_(file), picture_(picture), input_(picture.path) {
  for (size_t index = 0; index < picture.strips.size(); ++index) {
    strips_.push_back(file_.reserve());
    bridges_.push_back(file_.reserve());
  }
}

Error StripPainter::unreadable() const {
  return {QString::fromUtf16(errorDomain), PDFErrorUnreadable,
          u"The picture \"%1\" cannot be read: %2"_s.arg(picture_.path, input_.errorString())};
}

MaybeError StripPainter::write(const std::vector<PictureSheet>& sheets) {
  if (!input_.open(QIODevice::ReadOnly)) return unreadable();
  for (size_t index = 0; index < picture_.strips.size(); ++index) {
    const imaging::PictureStrip& strip = picture_.strips[index];
    const bool shown =
        std::any_of(sheets.begin(), sheets.end(), [&strip](const PictureSheet& sheet) {
          return sheet.showsPartOf(strip.firstRow, strip.rows);
        });
    if (!shown) continue;
    if (MaybeError error = writeBridge(index)) return error;
    if (MaybeError error = writeStrip(index)) return error;
  }
  return std::nullopt;
}

QByteArray StripPainter::imageEntries(int rows) const {
  return "/Type /XObject /Subtype /Image /Width " + QByteArray::number(picture_.pixels.width()) +
         " /Height " + QByteArray::number(rows) + " /ColorSpace /DeviceRGB /BitsPerComponent 8";
}

MaybeError StripPainter::writeStrip(size_t index) {
  const imaging::PictureStrip& strip = picture_.strips[index];
  const QByteArray packing =
      " /Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors 3 /BitsPerComponent 8 "
      "/Columns " +
      QByteArray::number(picture_.pixels.width()) + " >>";
  // A stream header, the picture's own blocks, a last block and the check sum.
  file_.beginStream(strips_[index], imageEntries(strip.rows) + packing, strip.packed.length + 8);
  if (!copyStrip(strip)) return unreadable();
  file_.endStream();
  return std::nullopt;
}

bool StripPainter::copyStrip(const imaging::PictureStrip& strip) {
  file_.append(QByteArray(imaging::PictureStrips::streamHeader, 2));
  if (!copyRange(strip.packed)) return false;
  QByteArray sum(4, '\0');
  qToBigEndian(strip.adler, sum.data());
  file_.append(QByteArray(imaging::PictureStrips::lastBlock, 2) + sum);
  return true;
}

bool StripPainter::copyRange(const imaging::ByteRange& range) {
  if (!input_.seek(range.offset)) return false;
  for (qint64 left = range.length; left > 0;) {
    const QByteArray piece = input_.read(std::min(left, copyPiece));
    if (piece.isEmpty()) return false;
    file_.append(piece);
    left -= piece.size();
  }
  return true;
}

/// Two strips meet within a device pixel at most zooms, and readers that smooth edges would let the
/// paper shine through there as a line. Under each seam therefore lies the lower strip's first row.
MaybeError StripPainter::writeBridge(size_t index) {
  if (index == 0) return std::nullopt;
  const auto row = firstRow(input_, picture_.strips[index], picture_.pixels.width());
  if (!row) return unreadable();
  file_.writeStream(bridges_[index], imageEntries(1), *row);
  return std::nullopt;
}

StripPainter::Painting StripPainter::paint(const PictureSheet& sheet) const {
  Painting painting;
  QByteArray bridges;
  for (size_t index = 0; index < picture_.strips.size(); ++index) {
    const imaging::PictureStrip& strip = picture_.strips[index];
    if (!sheet.showsPartOf(strip.firstRow, strip.rows)) continue;
    painting.resources += named('S', index) + ' ' + SequentialFile::reference(strips_[index]) + ' ';
    painting.content += "q ";
    if (!sheet.showsWholly(strip.firstRow, strip.rows)) painting.content += clip(sheet.target());
    painting.content += image(sheet.rowsOnPage(strip.firstRow, strip.rows), named('S', index));
    if (!sheet.showsPartOf(strip.firstRow - 1, 1)) continue;
    painting.resources +=
        named('B', index) + ' ' + SequentialFile::reference(bridges_[index]) + ' ';
    const double reach = bridgeReach / sheet.userUnit();
    const QRectF seam = sheet.rowsOnPage(strip.firstRow, 0).adjusted(0, -reach, 0, reach);
    bridges += "q " + image(seam.intersected(sheet.target()), named('B', index));
  }
  painting.content.prepend(bridges);
  return painting;
}

}  // namespace pdf
