#include "capture/CVWebDocumentView.h"

#include "platform/rendering/Print.h"
#include "platform/web/Page.h"

CVWebDocumentView::CVWebDocumentView(std::shared_ptr<web::Page> page) : page_(std::move(page)) {}

QRectF CVWebDocumentView::frame() const {
  const web::PageConfiguration& configuration = page_->configuration();
  return {0, 0, configuration.layoutWidth, configuration.viewportHeight};
}

void CVWebDocumentView::printTo(const printing::PrintInfo& info, const QString& path,
                                std::function<void(MaybeError)> completion) {
  rendering::PageSetup setup;
  setup.paper = info.paperSize();
  setup.margins =
      QMarginsF(info.leftMargin(), info.topMargin(), info.rightMargin(), info.bottomMargin());
  rendering::printPaginated(
      page_, setup, path,
      [completion = std::move(completion)](const Result<rendering::PrintedDocument>& printed) {
        completion(printed ? MaybeError() : printed.error());
      });
}
