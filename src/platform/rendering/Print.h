#pragma once

#include <QMarginsF>
#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/rendering/LowDocumentRule.h"

namespace web {
class Page;
}

namespace rendering {

struct PrintedDocument {
  int pages = 0;
  /// As a reader shows the pages, in points.
  QSizeF pageSize;
};

/// Paper as it lies: for landscape the caller has swapped width and height. Points.
struct PageSetup {
  QSizeF paper;
  QMarginsF margins;
};

/// Prints the document as one vector PDF page of its own size: 1 CSS pixel = 1 point, no margins,
/// screen styles, backgrounds, links, outline and tags. The author's page rules and page breaks do
/// not apply, and lengths in viewport units keep their pixels of the screen layout. The file
/// appears whole or not at all; an existing one is replaced. Above 14,400 points the
/// page has a user unit. A document higher than 1,300,000 points is an error that names the limit.
void printTall(const std::shared_ptr<web::Page>& page, const LowDocumentRule& lowDocument,
               const QString& path, std::function<void(Result<PrintedDocument>)> callback);

/// Prints the document on pages of the given set-up: the page keeps the layout of its own width and
/// is scaled to the printable width. Otherwise like `printTall`; the author's page breaks do apply.
void printPaginated(const std::shared_ptr<web::Page>& page, const PageSetup& setup,
                    const QString& path, std::function<void(Result<PrintedDocument>)> callback);

}  // namespace rendering
