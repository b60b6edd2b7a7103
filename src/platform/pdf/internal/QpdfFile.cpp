#include "platform/pdf/internal/QpdfFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cstdio>
#include <memory>
#include <qpdf/ClosedFileInputSource.hh>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFWriter.hh>

#include "platform/pdf/PDFDocument.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

Error pdfError(int code, const QString& text) {
  return {QString::fromUtf16(errorDomain), code, text};
}

/// A reader looks for the header in the first 1,024 bytes (ISO 32000-1, Annex H.3, note 13). Asking
/// first keeps the search for objects off large files of other kinds.
MaybeError checkHeader(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    return pdfError(PDFErrorUnreadable,
                    u"The file \"%1\" cannot be read: %2"_s.arg(path, file.errorString()));
  }
  if (file.read(1024).contains("%PDF-")) return std::nullopt;
  return pdfError(PDFErrorUnreadable, u"The file \"%1\" is not a PDF document."_s.arg(path));
}

void process(QPDF& document, const QString& path, FileAccess access) {
  const QByteArray name = QFile::encodeName(path);
  document.setSuppressWarnings(true);
  if (access == FileAccess::KeepOpen) {
    document.processFile(name.constData());
  } else {
    document.processInputSource(std::make_shared<ClosedFileInputSource>(name.constData()));
  }
  document.getAllPages();
}

/// Hands what the writer produces to a Qt device.
class DevicePipeline : public Pipeline {
 public:
  explicit DevicePipeline(QIODevice& device) : Pipeline("file", nullptr), device_(device) {}

  void write(const unsigned char* data, size_t length) override {
    const auto* bytes = reinterpret_cast<const char*>(data);
    if (device_.write(bytes, static_cast<qint64>(length)) != static_cast<qint64>(length)) {
      throw std::runtime_error(device_.errorString().toStdString());
    }
  }
  void finish() override {}

 private:
  QIODevice& device_;
};

void writeTo(QPDF& document, QIODevice& device, const std::string& leastVersion) {
  DevicePipeline pipeline(device);
  QPDFWriter writer(document);
  writer.setOutputPipeline(&pipeline);
  writer.setObjectStreamMode(qpdf_o_generate);
  writer.setPreserveEncryption(false);
  if (!leastVersion.empty()) writer.setMinimumPDFVersion(leastVersion);
  writer.write();
}

}  // namespace

MaybeError catchingQpdf(int code, const QString& what, const std::function<void()>& work) {
  try {
    work();
    return std::nullopt;
  } catch (const QPDFExc& exception) {
    return pdfError(code, what + QString::fromStdString(exception.getMessageDetail()));
  } catch (const std::exception& exception) {
    return pdfError(code, what + QString::fromUtf8(exception.what()));
  }
}

MaybeError openQpdf(QPDF& document, const QString& path, FileAccess access) {
  if (MaybeError error = checkHeader(path)) return error;
  bool passwordNeeded = false;
  const MaybeError error =
      catchingQpdf(PDFErrorUnreadable, u"The document \"%1\" is damaged: "_s.arg(path), [&] {
        try {
          process(document, path, access);
        } catch (const QPDFExc& exception) {
          passwordNeeded = exception.getErrorCode() == qpdf_e_password;
          throw;
        }
      });
  if (passwordNeeded) {
    return pdfError(PDFErrorEncrypted, u"The document \"%1\" needs a password."_s.arg(path));
  }
  return error;
}

MaybeError writeQpdf(QPDF& document, const QString& path, const std::string& leastVersion) {
  QSaveFile file(path);
  const QString what = u"The document \"%1\" cannot be written: "_s.arg(path);
  if (!file.open(QIODevice::WriteOnly)) return pdfError(PDFErrorWrite, what + file.errorString());
  if (MaybeError error =
          catchingQpdf(PDFErrorWrite, what, [&] { writeTo(document, file, leastVersion); }))
    return error;
  if (!file.commit()) return pdfError(PDFErrorWrite, what + file.errorString());
  return std::nullopt;
}

}  // namespace pdf
