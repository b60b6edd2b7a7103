#include "platform/pdf/internal/merge/ReadAhead.h"

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/merge/MendedCopy.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

using Opened = Result<std::unique_ptr<SourceFile>>;

/// Bounds the memory together with the size of the files.
constexpr int readAtOnce = 2;

/// Form fields are drawn by qpdf.
bool isPlain(const SourceFile& document) {
  return !document.pages().empty() && document.rootEntry("/AcroForm").isNull();
}

std::unique_ptr<SourceFile> openPlain(const QString& path) {
  try {
    auto document = std::make_unique<SourceFile>(path);
    return isPlain(*document) ? std::move(document) : nullptr;
  } catch (const std::exception&) {
    // Mending finds out what is wrong.
    return nullptr;
  }
}

Opened openMended(const QString& path) {
  const auto copy = mendedCopy(path);
  if (!copy) return tl::unexpected(copy.error());
  try {
    return std::make_unique<SourceFile>((*copy)->fileName());
  } catch (const std::exception& error) {
    return failure(
        QString::fromUtf16(errorDomain), PDFErrorUnreadable,
        u"The document \"%1\" is damaged: %2"_s.arg(path, QString::fromUtf8(error.what())));
  }
}

Opened openDocument(const QString& path) {
  if (auto document = openPlain(path)) return document;
  return openMended(path);
}

}  // namespace

ReadAhead::ReadAhead(const QStringList& paths) : paths_(paths) {
  for (int count = 0; count < readAtOnce; ++count)
    begin();
}

void ReadAhead::begin() {
  if (index_ == paths_.size()) return;
  opening_.push_back(std::async(std::launch::async, openDocument, paths_[index_++]));
}

Result<std::unique_ptr<SourceFile>> ReadAhead::next() {
  Opened opened = opening_.front().get();
  opening_.pop_front();
  begin();
  return opened;
}

}  // namespace pdf
