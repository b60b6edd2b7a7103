#include "Samples.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

#include "Tools.h"
#include "platform/imaging/PictureWriter.h"

using namespace Qt::StringLiterals;

namespace samples {

QString pages(const QStringList& texts) {
  const QString path = tools::fresh(u"pages.pdf"_s);
  QPdfWriter writer(path);
  writer.setPageSize(QPageSize(QPageSize::Letter));
  writer.setTitle(u"Sample"_s);
  QPainter painter(&writer);
  painter.setFont(QFont(u"DejaVu Sans"_s, 12));
  for (qsizetype index = 0; index < texts.size(); ++index) {
    if (index > 0) writer.newPage();
    painter.drawText(QRect(0, 0, writer.width(), writer.height()), Qt::AlignCenter, texts[index]);
  }
  return path;
}

QString fromObjects(const QStringList& objects, const QString& trailer) {
  QByteArray bytes = "%PDF-1.7\n";
  QByteArray table =
      "xref\n0 " + QByteArray::number(objects.size() + 1) + "\n0000000000 65535 f \n";
  for (qsizetype index = 0; index < objects.size(); ++index) {
    table += QByteArray::number(bytes.size()).rightJustified(10, '0') + " 00000 n \n";
    bytes += QByteArray::number(index + 1) + " 0 obj\n" + objects[index].toUtf8() + "\nendobj\n";
  }
  const QByteArray start = QByteArray::number(bytes.size());
  bytes += table + "trailer << /Root 1 0 R /Size " + QByteArray::number(objects.size() + 1) + ' ' +
           trailer.toUtf8() + " >>\nstartxref\n" + start + "\n%%EOF\n";
  return tools::file(u"objects.pdf"_s, bytes);
}

QString twoPages(const QString& catalog, const QString& first, const QString& second,
                 const QStringList& more, const QString& trailer) {
  return fromObjects(
      QStringList{u"<< /Type /Catalog /Pages 2 0 R %1 >>"_s.arg(catalog),
                  u"<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /MediaBox [0 0 300 200] >>"_s,
                  u"<< /Type /Page /Parent 2 0 R %1 >>"_s.arg(first),
                  u"<< /Type /Page /Parent 2 0 R %1 >>"_s.arg(second)} +
          more,
      trailer);
}

imaging::PictureStrips picture(QSize size, const std::function<QRgb(int x, int y)>& pixel) {
  const QString path = tools::fresh(u"picture.png"_s);
  auto writer = imaging::PictureWriter::create(path, size, imaging::BitmapFileType::PNG);
  EXPECT_TRUE(writer.has_value());
  constexpr int piece = 500;
  for (int top = 0; top < size.height(); top += piece) {
    QImage rows(size.width(), std::min(piece, size.height() - top), QImage::Format_RGB32);
    for (int y = 0; y < rows.height(); ++y) {
      auto* line = reinterpret_cast<QRgb*>(rows.scanLine(y));
      for (int x = 0; x < rows.width(); ++x)
        line[x] = pixel(x, top + y);
    }
    EXPECT_FALSE((*writer)->append(rows));
  }
  EXPECT_FALSE((*writer)->finish());
  const auto strips = imaging::readPictureStrips(path);
  EXPECT_TRUE(strips.has_value());
  return strips.value_or(imaging::PictureStrips{});
}

QString encrypted(const QString& path, const QString& password) {
  const QString target = tools::fresh(u"encrypted.pdf"_s);
  tools::run(u"qpdf"_s, {path, u"--encrypt"_s, password, u"owner"_s, u"256"_s, u"--"_s, target});
  return target;
}

}  // namespace samples
