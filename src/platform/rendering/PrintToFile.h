#pragma once

#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/pdf/PrintedPages.h"

namespace web {
class Page;
}

namespace rendering {

struct PrintPaper {
  /// Points; the engine rounds up to whole ones. There are no margins.
  QSizeF size;
  /// Of the page's CSS pixels to those of the paper (96 to the inch), 0.1 to 2.
  double scale = 1;
};

/// A PDF as the engine printed it, beside the place it is meant for; removed with this object.
class PrintRun {
 public:
  explicit PrintRun(const QString& target);
  ~PrintRun();
  PrintRun(const PrintRun&) = delete;
  PrintRun& operator=(const PrintRun&) = delete;

  /// The file is written there.
  const QString& path() const { return path_; }
  /// Reads what was written. Not on the main thread.
  MaybeError open();

  int pageCount() const { return pages_->pageCount(); }
  /// Replaces what is at the target by the pages, fitted. Not on the main thread.
  MaybeError moveToTarget(const pdf::PageFit& fit) const;

 private:
  QString target_;
  QString path_;
  std::unique_ptr<pdf::PrintedPages> pages_;
};

/// Prints the page as it is into a file beside `target`. Main thread only; the file is written and
/// read on the global queue.
void printToFile(const std::shared_ptr<web::Page>& page, const PrintPaper& paper,
                 const QString& target,
                 std::function<void(Result<std::shared_ptr<PrintRun>>)> callback);

}  // namespace rendering
