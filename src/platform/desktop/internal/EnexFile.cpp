#include "platform/desktop/internal/EnexFile.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QSaveFile>
#include <QXmlStreamWriter>

#include "platform/desktop/internal/Launch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// A multiple of 3, so that the pieces' Base64 texts join without padding between them.
constexpr qint64 pieceSize = 3 * 64 * 1024;

constexpr qsizetype longestTitle = 255;

/// What neither a note's title nor an XML document may hold. Halves of surrogate pairs are
/// replacement characters by now.
bool isForbidden(char32_t character) {
  return QChar::category(character) == QChar::Other_Control || character == 0xFFFE ||
         character == 0xFFFF;
}

QString legalText(const QString& text) {
  QString legal;
  const auto characters = text.toUcs4();
  for (const char32_t character : characters)
    legal += isForbidden(character) ? u" "_s : QString::fromUcs4(&character, 1);
  return legal.simplified();
}

QString legalTitle(const QString& text) {
  QString title = legalText(text).left(longestTitle);
  if (!title.isEmpty() && title.back().isHighSurrogate()) title.chop(1);
  title = title.trimmed();
  return title.isEmpty() ? u"Untitled"_s : title;
}

MaybeError fileError(const QString& path, const QString& cause) {
  return desktopError(DesktopErrorFile, u"%1: %2"_s.arg(path, cause));
}

/// The note's own document: the title as its text, then the attachment by its hash.
QString noteContent(const QString& title, const QString& mimeType, const QByteArray& hash) {
  QString document;
  QXmlStreamWriter xml(&document);
  xml.writeStartDocument();
  xml.writeDTD(u"<!DOCTYPE en-note SYSTEM \"http://xml.evernote.com/pub/enml2.dtd\">"_s);
  xml.writeStartElement(u"en-note"_s);
  xml.writeTextElement(u"div"_s, title);
  xml.writeStartElement(u"en-media"_s);
  xml.writeAttribute(u"type"_s, mimeType);
  xml.writeAttribute(u"hash"_s, QString::fromLatin1(hash.toHex()));
  xml.writeEndElement();
  xml.writeEndElement();
  xml.writeEndDocument();
  return document;
}

class EnexWriter {
 public:
  EnexWriter(QFile& attachment, QIODevice& target) : attachment_(attachment), xml_(&target) {}

  MaybeError write(const Note& note) {
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&attachment_)) return readError();
    const QString mimeType = QMimeDatabase().mimeTypeForFile(note.attachmentPath).name();
    const QString time = note.created.toUTC().toString(u"yyyyMMdd'T'HHmmss'Z'"_s);
    const QString title = legalTitle(note.title);
    begin(time);
    xml_.writeTextElement(u"title"_s, title);
    xml_.writeStartElement(u"content"_s);
    xml_.writeCDATA(noteContent(title, mimeType, hash.result()));
    xml_.writeEndElement();
    xml_.writeTextElement(u"created"_s, time);
    if (auto error = writeResource(mimeType)) return error;
    xml_.writeEndDocument();
    return std::nullopt;
  }

 private:
  MaybeError readError() const {
    return fileError(attachment_.fileName(), attachment_.errorString());
  }

  void begin(const QString& time) {
    xml_.writeStartDocument();
    xml_.writeDTD(
        u"<!DOCTYPE en-export SYSTEM \"http://xml.evernote.com/pub/evernote-export3.dtd\">"_s);
    xml_.writeStartElement(u"en-export"_s);
    xml_.writeAttribute(u"export-date"_s, time);
    xml_.writeAttribute(u"application"_s, u"Corvalis"_s);
    xml_.writeAttribute(u"version"_s, QString::fromLatin1(CORVALIS_VERSION));
    xml_.writeStartElement(u"note"_s);
  }

  MaybeError writeResource(const QString& mimeType) {
    xml_.writeStartElement(u"resource"_s);
    xml_.writeStartElement(u"data"_s);
    xml_.writeAttribute(u"encoding"_s, u"base64"_s);
    if (auto error = writeData()) return error;
    xml_.writeEndElement();
    xml_.writeTextElement(u"mime"_s, mimeType);
    xml_.writeStartElement(u"resource-attributes"_s);
    xml_.writeTextElement(u"file-name"_s, legalText(QFileInfo(attachment_.fileName()).fileName()));
    xml_.writeTextElement(u"attachment"_s, u"true"_s);
    xml_.writeEndElement();
    xml_.writeEndElement();
    return std::nullopt;
  }

  MaybeError writeData() {
    attachment_.seek(0);
    while (!attachment_.atEnd()) {
      const QByteArray piece = attachment_.read(pieceSize);
      if (piece.isEmpty()) return readError();
      xml_.writeCharacters(QString::fromLatin1(piece.toBase64()));
    }
    return std::nullopt;
  }

  QFile& attachment_;
  QXmlStreamWriter xml_;
};

}  // namespace

MaybeError writeEnexFile(const Note& note, const QString& path) {
  QFile attachment(note.attachmentPath);
  if (!attachment.open(QIODevice::ReadOnly))
    return fileError(note.attachmentPath, attachment.errorString());
  if (attachment.size() > longestAttachment)
    return desktopError(DesktopErrorTooLarge,
                        u"%1 is larger than a note may be (200 MB)."_s.arg(note.attachmentPath));
  QSaveFile target(path);
  if (!target.open(QIODevice::WriteOnly)) return fileError(path, target.errorString());
  if (auto error = EnexWriter(attachment, target).write(note)) return error;
  if (target.commit()) return std::nullopt;
  return fileError(path, target.errorString());
}

}  // namespace desktop
