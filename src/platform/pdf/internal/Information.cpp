#include "platform/pdf/internal/Information.h"

#include <QXmlStreamWriter>
#include <array>
#include <optional>

#include "platform/pdf/internal/QpdfText.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

struct InformationKey {
  PDFDocumentAttribute attribute;
  const char* key;
};

constexpr std::array<InformationKey, 6> informationKeys{{
    {PDFDocumentTitleAttribute, "/Title"},
    {PDFDocumentAuthorAttribute, "/Author"},
    {PDFDocumentSubjectAttribute, "/Subject"},
    {PDFDocumentCreatorAttribute, "/Creator"},
    {PDFDocumentProducerAttribute, "/Producer"},
    {PDFDocumentCreationDateAttribute, "/CreationDate"},
}};

std::optional<QString> textAttribute(const DocumentAttributes& attributes,
                                     PDFDocumentAttribute attribute) {
  const auto found = attributes.find(attribute);
  if (found == attributes.end() || !std::holds_alternative<QString>(found->second))
    return std::nullopt;
  return std::get<QString>(found->second);
}

std::optional<QDateTime> creationDate(const DocumentAttributes& attributes) {
  const auto found = attributes.find(PDFDocumentCreationDateAttribute);
  if (found == attributes.end()) return std::nullopt;
  QDateTime date;
  if (const auto* given = std::get_if<QDateTime>(&found->second)) date = *given;
  if (const auto* text = std::get_if<QString>(&found->second)) {
    date = QDateTime::fromString(*text, u"yyyy-MM-dd HH:mm:ss t"_s);
    if (!date.isValid()) date = QDateTime::fromString(*text, Qt::ISODate);
  }
  return date.isValid() ? std::optional(date) : std::nullopt;
}

/// The parts of an XMP packet (ISO 16684-1) that say the same as the document information.
class XmpPacket {
 public:
  QByteArray write(const DocumentAttributes& attributes) {
    writer_.writeProcessingInstruction(u"xpacket"_s,
                                       u"begin=\"\uFEFF\" id=\"W5M0MpCehiHzreSzNTczkc9d\""_s);
    writer_.writeNamespace(u"adobe:ns:meta/"_s, u"x"_s);
    writer_.writeStartElement(u"adobe:ns:meta/"_s, u"xmpmeta"_s);
    writer_.writeNamespace(rdf_, u"rdf"_s);
    writer_.writeStartElement(rdf_, u"RDF"_s);
    writeDescription(attributes);
    writer_.writeEndElement();
    writer_.writeEndElement();
    writer_.writeProcessingInstruction(u"xpacket"_s, u"end=\"w\""_s);
    return bytes_;
  }

 private:
  void writeDescription(const DocumentAttributes& attributes) {
    writer_.writeNamespace(dublinCore_, u"dc"_s);
    writer_.writeNamespace(xmp_, u"xmp"_s);
    writer_.writeNamespace(pdf_, u"pdf"_s);
    writer_.writeStartElement(rdf_, u"Description"_s);
    writer_.writeAttribute(rdf_, u"about"_s, QString());
    const auto text = [&](PDFDocumentAttribute attribute) {
      return textAttribute(attributes, attribute);
    };
    writeList(u"title"_s, u"Alt"_s, text(PDFDocumentTitleAttribute));
    writeList(u"creator"_s, u"Seq"_s, text(PDFDocumentAuthorAttribute));
    writeList(u"description"_s, u"Alt"_s, text(PDFDocumentSubjectAttribute));
    writeText(xmp_, u"CreatorTool"_s, text(PDFDocumentCreatorAttribute));
    writeText(pdf_, u"Producer"_s, text(PDFDocumentProducerAttribute));
    if (const auto date = creationDate(attributes)) {
      writeText(xmp_, u"CreateDate"_s,
                date->toOffsetFromUtc(date->offsetFromUtc()).toString(Qt::ISODate));
    }
    writer_.writeEndElement();
  }

  void writeText(const QString& space, const QString& name, const std::optional<QString>& text) {
    if (text) writer_.writeTextElement(space, name, withoutControls(*text));
  }

  void writeList(const QString& name, const QString& container,
                 const std::optional<QString>& text) {
    if (!text) return;
    writer_.writeStartElement(dublinCore_, name);
    writer_.writeStartElement(rdf_, container);
    writer_.writeStartElement(rdf_, u"li"_s);
    if (container == u"Alt"_s) writer_.writeAttribute(u"xml:lang"_s, u"x-default"_s);
    writer_.writeCharacters(withoutControls(*text));
    for (int element = 0; element < 3; ++element)
      writer_.writeEndElement();
  }

  /// Titles of pages may hold what XML 1.0 has no place for (section 2.2).
  static bool isXmlCharacter(char32_t character) {
    if (character < 0x20) return character == '\t' || character == '\n';
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return !surrogate && character != 0xFFFE && character != 0xFFFF;
  }

  static QString withoutControls(const QString& text) {
    QString kept;
    for (const char32_t character : text.toUcs4()) {
      if (isXmlCharacter(character)) kept += QString::fromUcs4(&character, 1);
    }
    return kept;
  }

  const QString rdf_ = u"http://www.w3.org/1999/02/22-rdf-syntax-ns#"_s;
  const QString dublinCore_ = u"http://purl.org/dc/elements/1.1/"_s;
  const QString xmp_ = u"http://ns.adobe.com/xap/1.0/"_s;
  const QString pdf_ = u"http://ns.adobe.com/pdf/1.3/"_s;
  QByteArray bytes_;
  QXmlStreamWriter writer_{&bytes_};
};

QPDFObjectHandle informationObject(const DocumentAttributes& attributes) {
  QPDFObjectHandle information = QPDFObjectHandle::newDictionary();
  for (const InformationKey& entry : informationKeys) {
    if (entry.attribute == PDFDocumentCreationDateAttribute) continue;
    if (const auto text = textAttribute(attributes, entry.attribute)) {
      information.replaceKey(entry.key, textObject(*text));
    }
  }
  if (const auto date = creationDate(attributes)) {
    information.replaceKey("/CreationDate", textObject(dateText(*date)));
  }
  return information;
}

}  // namespace

QByteArray xmpPacket(const DocumentAttributes& attributes) {
  return XmpPacket().write(attributes);
}

std::string informationText(const DocumentAttributes& attributes) {
  return informationObject(attributes).unparse();
}

void writeInformation(QPDF& document, const DocumentAttributes& attributes) {
  document.getTrailer().replaceKey("/Info",
                                   document.makeIndirectObject(informationObject(attributes)));
  QPDFObjectHandle metadata =
      QPDFObjectHandle::newStream(&document, xmpPacket(attributes).toStdString());
  metadata.getDict().replaceKey("/Type", QPDFObjectHandle::newName("/Metadata"));
  metadata.getDict().replaceKey("/Subtype", QPDFObjectHandle::newName("/XML"));
  document.getRoot().replaceKey("/Metadata", metadata);
}

DocumentAttributes readInformation(QPDF& document) {
  DocumentAttributes attributes;
  QPDFObjectHandle information = document.getTrailer().getKey("/Info");
  if (!information.isDictionary()) return attributes;
  for (const InformationKey& entry : informationKeys) {
    const auto text = textOf(information.getKey(entry.key));
    if (!text) continue;
    if (entry.attribute != PDFDocumentCreationDateAttribute) {
      attributes[entry.attribute] = *text;
    } else if (const auto date = dateFromText(*text)) {
      attributes[entry.attribute] = *date;
    }
  }
  return attributes;
}

}  // namespace pdf
