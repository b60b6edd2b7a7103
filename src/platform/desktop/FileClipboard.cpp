#include "platform/desktop/FileClipboard.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QMimeDatabase>
#include <QUrl>

#include "platform/desktop/internal/Launch.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// Qt's own name for a picture, which it offers to other programs in all formats it can write.
const QString qtPicture = u"application/x-qt-image"_s;

/// A picture's file on the clipboard. Its bytes are read when another program asks for them:
/// decoded, a tall page takes hundreds of megabytes.
class FileContents : public QMimeData {
 public:
  explicit FileContents(const QString& path) : path_(path) {
    const QByteArray address = fileAddress(path);
    setUrls({QUrl::fromEncoded(address)});
    setData(u"x-special/gnome-copied-files"_s, "copy\n" + address);
    setData(u"application/x-kde-cutselection"_s, "0");
    const QString type = QMimeDatabase().mimeTypeForFile(path).name();
    if (!type.startsWith(u"image/"_s)) return;
    pictureType_ = type;
    decodable_ = QImageReader(path).canRead();
  }

  QStringList formats() const override {
    QStringList formats = QMimeData::formats();
    if (!pictureType_.isEmpty()) formats << pictureType_;
    if (decodable_) formats << qtPicture;
    return formats;
  }

  bool hasFormat(const QString& format) const override { return formats().contains(format); }

 protected:
  QVariant retrieveData(const QString& format, QMetaType type) const override {
    if (!pictureType_.isEmpty() && format == pictureType_) return fileBytes();
    if (decodable_ && format == qtPicture) return decoded();
    return QMimeData::retrieveData(format, type);
  }

 private:
  QByteArray fileBytes() const {
    QFile file(path_);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QVariant decoded() const {
    QImageReader reader(path_);
    reader.setDecideFormatFromContent(true);
    return reader.read();
  }

  QString path_;
  QString pictureType_;
  bool decodable_ = false;
};

class WindowSystemClipboard : public FileClipboard {
 public:
  MaybeError setFile(const QString& path) override {
    const QFileInfo file(path);
    if (!file.exists()) return desktopError(DesktopErrorFile, u"%1 does not exist."_s.arg(path));
    return put([&file] { return new FileContents(file.absoluteFilePath()); });
  }

  MaybeError setText(const QString& text) override {
    return put([&text] {
      auto* contents = new QMimeData;
      contents->setText(text);
      return contents;
    });
  }

 private:
  static MaybeError put(const std::function<QMimeData*()>& contents) {
    bool done = false;
    dispatch::mainSync([&] {
      if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return;
      QGuiApplication::clipboard()->setMimeData(contents());
      done = true;
    });
    if (done) return std::nullopt;
    return desktopError(DesktopErrorUnavailable, u"There is no clipboard without a window."_s);
  }
};

}  // namespace

std::shared_ptr<FileClipboard> FileClipboard::create() {
  return std::make_shared<WindowSystemClipboard>();
}

}  // namespace desktop
