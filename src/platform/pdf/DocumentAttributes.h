#pragma once

#include <QDateTime>
#include <QString>
#include <map>
#include <variant>

namespace pdf {

/// What a document says of itself (ISO 32000-1, 14.3.3).
enum PDFDocumentAttribute : int {
  PDFDocumentTitleAttribute,
  PDFDocumentAuthorAttribute,
  PDFDocumentSubjectAttribute,
  PDFDocumentCreatorAttribute,
  PDFDocumentProducerAttribute,
  PDFDocumentCreationDateAttribute,
};

/// The creation date is a `QDateTime`, or the text form of one ("2026-11-22 20:34:02 +0000").
/// Readers understand only the form of ISO 32000-1, 7.9.4, so that is what the file holds; a text
/// that is no date leaves the file without one.
using DocumentAttributes = std::map<PDFDocumentAttribute, std::variant<QString, QDateTime>>;

}  // namespace pdf
