#include <gtest/gtest.h>

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include "platform/desktop/FileClipboard.h"
#include "platform/dispatch/Dispatch.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

TEST(FileClipboard, PictureIsThereAsFileForFileManagersAndAsPicture) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a, 'b'\n100% ü.png"_s);
  QImage picture(3, 2, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(path, "PNG"));

  ASSERT_EQ(desktop::FileClipboard::create()->setFile(path), std::nullopt);
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  ASSERT_EQ(data->urls().size(), 1);
  EXPECT_EQ(data->urls().first().toLocalFile(), path);
  const QByteArray list = data->data(u"text/uri-list"_s);
  EXPECT_EQ(list.count('\n'), 1) << list.constData();
  const QByteArray gnome = data->data(u"x-special/gnome-copied-files"_s);
  ASSERT_TRUE(gnome.startsWith("copy\nfile:///"));
  EXPECT_EQ(QUrl::fromEncoded(gnome.mid(5)).toLocalFile(), path);
  EXPECT_EQ(data->data(u"application/x-kde-cutselection"_s), "0");
  EXPECT_TRUE(data->hasImage());
  EXPECT_EQ(qvariant_cast<QImage>(data->imageData()).pixelColor(1, 1), QColor(Qt::red));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(data->data(u"image/png"_s), file.readAll());
}

TEST(FileClipboard, DocumentIsNoPictureAndAMissingFileLeavesTheClipboard) {
  const QTemporaryDir folder;
  QFile file(folder.filePath(u"a.pdf"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("%PDF-1.7\n");
  file.close();
  const auto clipboard = desktop::FileClipboard::create();
  ASSERT_EQ(clipboard->setFile(file.fileName()), std::nullopt);
  EXPECT_TRUE(clipboard->setFile(folder.filePath(u"missing"_s)).has_value());
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  EXPECT_FALSE(data->hasImage());
  EXPECT_EQ(data->urls().value(0).toLocalFile(), file.fileName());
}

TEST(FileClipboard, TextFromAWorkerReplacesTheFile) {
  const auto clipboard = desktop::FileClipboard::create();
  std::atomic<bool> done = false;
  dispatch::globalAsync(dispatch::Priority::Default, [&] {
    EXPECT_EQ(clipboard->setText(u"https://example.test/"_s), std::nullopt);
    done = true;
  });
  ASSERT_TRUE(support::waitFor([&] { return done.load(); }));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"https://example.test/"_s);
  EXPECT_FALSE(QGuiApplication::clipboard()->mimeData()->hasUrls());
}
