#pragma once

#include <QMarginsF>
#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>

#include "platform/base/Error.h"
#include "platform/rendering/Print.h"

namespace web {
class Page;
}

namespace rendering {

/// Points.
struct PrintPaper {
  QSizeF size;
  QMarginsF margins;
  /// Of the page's CSS pixels to those of the paper (96 to the inch), 0.1 to 2.
  double scale = 1;
};

/// A printed PDF beside the place it is meant for, removed unless it is moved there.
class PrintedFile {
 public:
  explicit PrintedFile(const QString& target);
  ~PrintedFile();
  PrintedFile(const PrintedFile&) = delete;
  PrintedFile& operator=(const PrintedFile&) = delete;

  const QString& path() const { return path_; }
  /// Replaces what is at the target. Any thread.
  MaybeError moveToTarget();

 private:
  QString target_;
  QString path_;
};

struct PrintRun {
  std::shared_ptr<PrintedFile> file;
  PrintedDocument document;
};

/// Prints the page as it is into a file beside `target`. Main thread only; the file is written and
/// counted on the global queue.
void printToFile(const std::shared_ptr<web::Page>& page, const PrintPaper& paper,
                 const QString& target, std::function<void(Result<PrintRun>)> callback);

}  // namespace rendering
