#include "platform/pdf/PicturePages.h"

#include <QUrl>
#include <algorithm>
#include <cmath>

#include "platform/imaging/PictureStrips.h"
#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/InvisibleFont.h"
#include "platform/pdf/internal/InvisibleText.h"
#include "platform/pdf/internal/PictureOutline.h"
#include "platform/pdf/internal/PictureSheet.h"
#include "platform/pdf/internal/SequentialFile.h"
#include "platform/pdf/internal/StripPainter.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

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
      : text_(text), file_(path), strips_(file_, picture) {
    for (const PicturePage& page : pages) {
      sheets_.emplace_back(page, documentSize, picture.pixels.height());
      pageObjects_.push_back(file_.reserve());
    }
  }

  MaybeError write() {
    if (MaybeError error = strips_.write(sheets_)) return error;
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
    const StripPainter::Painting painting = strips_.paint(sheet);
    const QByteArray links = linksOn(sheet);
    const int contents = file_.reserve();
    file_.writeStream(contents, {}, painting.content + invisibleText(text_.runs, sheet, font_));
    QByteArray body = "<< /Type /Page /Parent " + SequentialFile::reference(tree) + " /MediaBox " +
                      box(QRectF(QPointF(0, 0), sheet.box())) + " /Contents " +
                      SequentialFile::reference(contents) + " /Resources << /XObject << " +
                      painting.resources + ">>";
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

  const PictureText& text_;
  SequentialFile file_;
  StripPainter strips_;
  std::vector<PictureSheet> sheets_;
  std::vector<int> pageObjects_;
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
