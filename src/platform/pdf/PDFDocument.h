#pragma once

#include <QSizeF>
#include <QString>
#include <QUrl>
#include <memory>
#include <vector>

#include "platform/base/Error.h"
#include "platform/pdf/DocumentAttributes.h"

namespace pdf {

inline constexpr char16_t errorDomain[] = u"PDF";

enum PDFErrorCode : int {
  PDFErrorUnreadable = 1,  ///< missing, no PDF, or damaged beyond repair
  PDFErrorEncrypted = 2,   ///< needs a password
  PDFErrorNoPages = 3,
  PDFErrorWrite = 4,
  PDFErrorArgument = 5,  ///< a page that does not exist, a size that no page can have
};

/// A PDF document that can be changed and written. Usable on any thread, by one thread at a time.
class PDFDocument {
 public:
  /// Opens a file. Damaged files are repaired where their pages can be found; an encrypted file
  /// opens when its password is the empty one and is written without encryption. The file is read
  /// as it is needed: it has to stay in place for the document's life (it may be replaced by
  /// renaming).
  static Result<std::shared_ptr<PDFDocument>> open(const QString& path);
  static Result<std::shared_ptr<PDFDocument>> initWithURL(const QUrl& url);

  static std::shared_ptr<PDFDocument> createEmpty();

  ~PDFDocument();
  PDFDocument(const PDFDocument&) = delete;
  PDFDocument& operator=(const PDFDocument&) = delete;

  int pageCount() const;

  /// Sizes as a reader shows them, in points: crop box, rotation and user unit applied.
  std::vector<QSizeF> pageSizes() const;

  /// Puts a copy of a page of `document` (which may be this one) before the page `at`; `at` equal
  /// to the page count appends. Outline, tags and named destinations stay behind: `mergeDocuments`
  /// keeps them.
  MaybeError insertPageFrom(const PDFDocument& document, int pageIndex, int at);

  /// Replaces everything the document says of itself, in the document information and in the XMP
  /// packet alike, so that all readers agree. Attributes that are not given are absent afterwards.
  void setDocumentAttributes(const DocumentAttributes& attributes);

  /// As the document information has them; a date comes as a `QDateTime`.
  DocumentAttributes documentAttributes() const;

  /// Writes compactly (object streams; streams that are compressed already go through unchanged).
  /// The file appears whole or not at all; the path may be the one that the document was read from.
  /// A document without pages is an error.
  MaybeError writeToFile(const QString& path) const;
  MaybeError writeToURL(const QUrl& url) const;

  struct Contents;
  explicit PDFDocument(std::shared_ptr<Contents> contents);

 private:
  std::shared_ptr<Contents> contents_;
};

}  // namespace pdf
