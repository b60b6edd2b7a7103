#include "platform/imaging/AddressMark.h"

#include <sys/stat.h>

#include <QtEndian>
#include <algorithm>

namespace imaging {

namespace {

/// A JPEG segment ends at 65,533 bytes.
constexpr qsizetype longestAddress = 8'192;

qint64 sizeOf(const PartFile& file) {
  struct stat status {};
  return ::fstat(file.descriptor(), &status) == 0 ? status.st_size : 0;
}

/// Comment extension (GIF89a, 24), with the trailer that it has to stand before.
QByteArray gifComment(const QByteArray& address) {
  QByteArray block("\x21\xfe", 2);
  for (qsizetype at = 0; at < address.size(); at += 255) {
    const QByteArray piece = address.sliced(at, std::min<qsizetype>(255, address.size() - at));
    block += char(uchar(piece.size())) + piece;
  }
  return block + '\0' + '\x3b';
}

/// A UUID box (ISO/IEC 15444-1, I.7.2) with the identifier that XMP has there.
QByteArray xmpBox(const QByteArray& address) {
  const QByteArray content =
      QByteArray::fromHex("be7acfcb97a942e89c71999491e3afac") + xmpPacket(address);
  QByteArray length(4, Qt::Uninitialized);
  qToBigEndian(quint32(content.size() + 8), length.data());
  return length + "uuid" + content;
}

}  // namespace

QByteArray addressToKeep(const PictureMetadata& metadata) {
  const QByteArray address = metadata.address.value_or(QString()).toUtf8();
  return address.size() <= longestAddress ? address : QByteArray();
}

QByteArray xmpPacket(const QByteArray& address) {
  return "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
         "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
         "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
         "<rdf:Description rdf:about=\"\" "
         "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"><dc:source>" +
         QString::fromUtf8(address).toHtmlEscaped().toUtf8() +
         "</dc:source></rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"r\"?>";
}

MaybeError appendAddress(PartFile& file, AddressPlace place, const QByteArray& address) {
  if (address.isEmpty()) return {};
  const qint64 end = sizeOf(file);
  if (place == AddressPlace::Comment) return file.writeAt(end - 1, gifComment(address));
  if (place == AddressPlace::XmpBox) return file.writeAt(end, xmpBox(address));
  return {};
}

}  // namespace imaging
