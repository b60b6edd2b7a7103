#include "platform/pdf/PicturePages.h"

#include <QFile>
#include <QUrl>
#include <QtEndian>
#include <algorithm>
#include <cmath>

#include "platform/imaging/PictureStrips.h"
#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/InvisibleFont.h"
#include "platform/pdf/internal/PictureOutline.h"
#include "platform/pdf/internal/PictureSheet.h"
#include "platform/pdf/internal/SequentialFile.h"
#include "platform/pdf/internal/VisualOrder.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

constexpr qint64 copyPiece = 1 << 20;

Error pdfError(PDFErrorCode code, const QString& text) {
  return {QString::fromUtf16(errorDomain), code, text};
}

MaybeError checkPages(const imaging::PictureStrips& picture, QSizeF documentSize,
                      const std::vector<PicturePage>& pages) {
  if (pages.empty() || picture.strips.empty()) {
    return pdfError(PDFErrorNoPages, u"There is no picture to make pages of."_s);
  }
  bool usable = documentSize.width() > 0 && documentSize.height() > 0;
  for (const PicturePage& page : pages) {
    usable = usable && page.rows > 0 && page.firstRow >= 0 &&
             page.firstRow <= picture.pixels.height() - page.rows && page.paper.width() > 0 &&
             page.paper.height() > 0 && page.target.width() > 0 && page.target.height() > 0;
  }
  if (usable) return std::nullopt;
  return pdfError(PDFErrorArgument, u"The picture cannot be laid out on pages of this size."_s);
}

QByteArray box(const QRectF& area) {
  return "[" + number(area.left()) + ' ' + number(area.top()) + ' ' + number(area.right()) + ' ' +
         number(area.bottom()) + "]";
}

QString lengthNote(double points) {
  return u"A page is %1 points long. Readers that do not know user units show it reduced to %2 "
         u"points; choose "
         u"pagination for pages that every reader shows at full size."_s.arg(std::lround(points))
             .arg(std::lround(longestPageSide));
}

/// Links that lead outside; scripts of the page mean nothing in a document.
std::optional<QByteArray> linkAddress(const LinkArea& link) {
  if (!link.href) return std::nullopt;
  const QUrl url(*link.href);
  if (!url.isValid() || url.isRelative() || url.scheme() == u"javascript"_s) return std::nullopt;
  return url.toEncoded();
}

/// Writes one picture document; each object goes to the file as soon as what it needs is known.
class PictureDocument {
 public:
  PictureDocument(const imaging::PictureStrips& picture, QSizeF documentSize,
                  const std::vector<PicturePage>& pages, const PictureText& text,
                  const QString& path)
      : picture_(picture), text_(text), file_(path), input_(picture.path) {
    for (const PicturePage& page : pages) {
      sheets_.emplace_back(page, documentSize, picture.pixels.height());
      pageObjects_.push_back(file_.reserve());
    }
    for (size_t strip = 0; strip < picture.strips.size(); ++strip)
      stripObjects_.push_back(file_.reserve());
  }

  MaybeError write() {
    if (MaybeError error = writeStrips()) return error;
    const int tree = file_.reserve(), catalog = file_.reserve();
    if (!text_.runs.empty()) fontObject_ = file_.reserve();
    for (size_t index = 0; index < sheets_.size(); ++index)
      writePage(index, tree);
    if (fontObject_) font_.write(file_, *fontObject_);
    writePageTree(tree);
    writeCatalog(catalog, tree);
    return file_.finish(catalog);
  }

 private:
  bool isShown(const imaging::PictureStrip& strip) const {
    return std::any_of(sheets_.begin(), sheets_.end(), [&strip](const PictureSheet& sheet) {
      return sheet.showsPartOf(strip.firstRow, strip.rows);
    });
  }

  MaybeError writeStrips() {
    if (!input_.open(QIODevice::ReadOnly)) return unreadable();
    for (size_t index = 0; index < picture_.strips.size(); ++index) {
      const imaging::PictureStrip& strip = picture_.strips[index];
      if (!isShown(strip)) continue;
      file_.beginStream(stripObjects_[index], stripEntries(strip), strip.compressedSize() + 8);
      if (!copyStrip(strip)) return unreadable();
      file_.endStream();
    }
    return std::nullopt;
  }

  Error unreadable() const {
    return pdfError(PDFErrorUnreadable, u"The picture \"%1\" cannot be read: %2"_s.arg(
                                            picture_.path, input_.errorString()));
  }

  QByteArray stripEntries(const imaging::PictureStrip& strip) const {
    const QByteArray columns = QByteArray::number(picture_.pixels.width());
    return "/Type /XObject /Subtype /Image /Width " + columns + " /Height " +
           QByteArray::number(strip.rows) +
           " /ColorSpace /DeviceRGB /BitsPerComponent 8 /Filter /FlateDecode /DecodeParms << "
           "/Predictor 15 /Colors 3 "
           "/BitsPerComponent 8 /Columns " +
           columns + " >>";
  }

  /// The deflate blocks of the picture between a stream header, a last block and the check sum.
  bool copyStrip(const imaging::PictureStrip& strip) {
    file_.append(QByteArray(imaging::PictureStrips::streamHeader, 2));
    for (const imaging::ByteRange& range : strip.ranges) {
      if (!copyRange(range)) return false;
    }
    QByteArray sum(4, '\0');
    qToBigEndian(strip.adler, sum.data());
    file_.append(QByteArray(imaging::PictureStrips::lastBlock, 2) + sum);
    return true;
  }

  bool copyRange(const imaging::ByteRange& range) {
    if (!input_.seek(range.offset)) return false;
    for (qint64 left = range.length; left > 0;) {
      const QByteArray piece = input_.read(std::min(left, copyPiece));
      if (piece.isEmpty()) return false;
      file_.append(piece);
      left -= piece.size();
    }
    return true;
  }

  QByteArray picturesOn(const PictureSheet& sheet, QByteArray& resources) const {
    QByteArray content;
    for (size_t index = 0; index < picture_.strips.size(); ++index) {
      const imaging::PictureStrip& strip = picture_.strips[index];
      if (!sheet.showsPartOf(strip.firstRow, strip.rows)) continue;
      const QByteArray name = "/S" + QByteArray::number(static_cast<qint64>(index));
      resources += ' ' + name + ' ' + SequentialFile::reference(stripObjects_[index]);
      content += "q ";
      if (!sheet.showsWholly(strip.firstRow, strip.rows)) content += clip(sheet.target());
      content += imageMatrix(sheet.rowsOnPage(strip.firstRow, strip.rows)) + name + " Do Q\n";
    }
    return content;
  }

  static QByteArray clip(const QRectF& area) {
    return number(area.x()) + ' ' + number(area.y()) + ' ' + number(area.width()) + ' ' +
           number(area.height()) + " re W n ";
  }

  static QByteArray imageMatrix(const QRectF& area) {
    return number(area.width()) + " 0 0 " + number(area.height()) + ' ' + number(area.x()) + ' ' +
           number(area.y()) + " cm ";
  }

  QByteArray textOn(const PictureSheet& sheet) {
    QByteArray content;
    for (const TextRun& run : text_.runs) {
      if (sheet.shows(run.rect.center().y())) content += shownRun(run, sheet);
    }
    return content.isEmpty() ? content : "BT 3 Tr\n" + content + "ET\n";
  }

  /// The space that ends a word stands beside its box, where the next word of the line is read.
  QByteArray shownRun(const TextRun& run, const PictureSheet& sheet) {
    const std::u32string line = visualOrder(run.text.simplified(), run.direction);
    QRectF documentRect = run.rect;
    if (documentRect.height() <= 0) documentRect.setHeight(run.fontSize);
    const QRectF area = sheet.place(documentRect);
    if (line.empty() || area.width() <= 0 || area.height() <= 0) return {};
    const double stretch = area.width() / (font_.width(line) * area.height());
    double x = area.x();
    std::u32string shown = line;
    if (run.endsWord && run.direction == TextDirection::LeftToRight) shown += U' ';
    if (run.endsWord && run.direction == TextDirection::RightToLeft) {
      shown = U' ' + line;
      x -= font_.width(U" ") * area.height() * stretch;
    }
    return "/F " + number(area.height()) + " Tf " + number(stretch * 100) + " Tz 1 0 0 1 " +
           number(x) + ' ' + number(area.y() + InvisibleFont::descent * area.height()) + " Tm " +
           font_.encode(shown) + " Tj\n";
  }

  QByteArray destination(double documentY) const {
    for (size_t index = 0; index < sheets_.size(); ++index) {
      if (!sheets_[index].shows(documentY)) continue;
      return "[" + SequentialFile::reference(pageObjects_[index]) + " /XYZ 0 " +
             number(sheets_[index].placeY(documentY)) + " null]";
    }
    return {};
  }

  QByteArray linkTarget(const LinkArea& link) const {
    if (link.targetY) {
      const QByteArray place = destination(*link.targetY);
      return place.isEmpty() ? place : "/Dest " + place;
    }
    const auto address = linkAddress(link);
    return address ? "/A << /S /URI /URI " + literalString(*address) + " >>" : QByteArray();
  }

  QByteArray linksOn(const PictureSheet& sheet) {
    QByteArray references;
    for (const LinkArea& link : text_.links) {
      const QByteArray target = linkTarget(link);
      if (target.isEmpty()) continue;
      for (const QRectF& rect : link.rects) {
        const QRectF area = sheet.place(rect).intersected(sheet.target());
        if (area.isEmpty()) continue;
        const int object = file_.reserve();
        file_.writeObject(object, "<< /Type /Annot /Subtype /Link /F 4 /Border [0 0 0] /Rect " +
                                      box(area) + ' ' + target + " >>");
        references += SequentialFile::reference(object) + ' ';
      }
    }
    return references;
  }

  void writePage(size_t index, int tree) {
    const PictureSheet& sheet = sheets_[index];
    QByteArray images;
    const QByteArray content = picturesOn(sheet, images) + textOn(sheet);
    const QByteArray links = linksOn(sheet);
    const int contents = file_.reserve();
    file_.writeStream(contents, {}, content);
    QByteArray body = "<< /Type /Page /Parent " + SequentialFile::reference(tree) + " /MediaBox " +
                      box(QRectF(QPointF(0, 0), sheet.box())) + " /Contents " +
                      SequentialFile::reference(contents) + " /Resources << /XObject <<" + images +
                      " >>";
    if (fontObject_) body += " /Font << /F " + SequentialFile::reference(*fontObject_) + " >>";
    body += " >>";
    if (sheet.userUnit() > 1) body += " /UserUnit " + number(sheet.userUnit());
    if (!links.isEmpty()) body += " /Annots [" + links + "]";
    file_.writeObject(pageObjects_[index], body + " >>");
  }

  void writePageTree(int tree) {
    QByteArray kids;
    for (const int page : pageObjects_)
      kids += SequentialFile::reference(page) + ' ';
    file_.writeObject(tree, "<< /Type /Pages /Count " +
                                QByteArray::number(static_cast<qint64>(sheets_.size())) +
                                " /Kids [" + kids + "] >>");
  }

  void writeCatalog(int catalog, int tree) {
    std::vector<OutlineEntry> entries;
    for (const Heading& heading : text_.headings) {
      const QByteArray place = destination(heading.y);
      if (!place.isEmpty()) entries.push_back({heading.text.simplified(), heading.level, place});
    }
    QByteArray body = "<< /Type /Catalog /Pages " + SequentialFile::reference(tree);
    if (!entries.empty())
      body += " /Outlines " + SequentialFile::reference(writeOutline(file_, entries));
    if (text_.language) body += " /Lang " + textString(*text_.language);
    file_.writeObject(catalog, body + " >>");
  }

  const imaging::PictureStrips& picture_;
  const PictureText& text_;
  SequentialFile file_;
  QFile input_;
  std::vector<PictureSheet> sheets_;
  std::vector<int> pageObjects_;
  std::vector<int> stripObjects_;
  std::optional<int> fontObject_;
  InvisibleFont font_;
};

}  // namespace

PicturePage wholePicturePage(QSizeF documentSize, int rows) {
  const QSizeF half = documentSize / 2;
  return {half, 0, rows, QRectF(QPointF(0, 0), half)};
}

Result<WrittenPicturePages> writePicturePages(const imaging::PictureStrips& picture,
                                              QSizeF documentSize,
                                              const std::vector<PicturePage>& pages,
                                              const PictureText& text, const QString& path) {
  if (MaybeError error = checkPages(picture, documentSize, pages)) return tl::unexpected(*error);
  PictureDocument document(picture, documentSize, pages, text, path);
  if (MaybeError error = document.write()) return tl::unexpected(*error);
  WrittenPicturePages written{static_cast<int>(pages.size()), std::nullopt};
  double longest = 0;
  for (const PicturePage& page : pages)
    longest = std::max({longest, page.paper.width(), page.paper.height()});
  if (longest > longestPageSide) written.note = lengthNote(longest);
  return written;
}

}  // namespace pdf
