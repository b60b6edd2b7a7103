#include "platform/pdf/internal/merge/ReadAhead.h"

#include <QFileInfo>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/QpdfFile.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

constexpr qint64 mostMemory = 512 << 20;

Result<std::unique_ptr<QPDF>> readCompletely(const QString& path, FileAccess access) {
  auto document = openQpdf(path, access);
  if (!document) return document;
  const MaybeError error =
      catchingQpdf(PDFErrorUnreadable, u"The document \"%1\" is damaged: "_s.arg(path), [&] {
        (*document)->pushInheritedAttributesToPage();
        (*document)->getAllObjects();
      });
  if (error) return tl::unexpected(*error);
  return document;
}

}  // namespace

ReadAhead::ReadAhead(const QStringList& paths) : paths_(paths) {
  begin(nullptr);
}

void ReadAhead::begin(std::unique_ptr<QPDF> finished) {
  if (index_ == paths_.size()) return;
  const QString path = paths_[index_++];
  memory_ += QFileInfo(path).size();
  const FileAccess access = memory_ < mostMemory ? FileAccess::Quick : FileAccess::OpenOnDemand;
  opening_ = std::async(std::launch::async, [path, access, unused = std::move(finished)]() mutable {
    unused.reset();
    return readCompletely(path, access);
  });
}

Result<std::unique_ptr<QPDF>> ReadAhead::next(std::unique_ptr<QPDF> finished) {
  Opened opened = opening_.get();
  begin(std::move(finished));
  return opened;
}

}  // namespace pdf
