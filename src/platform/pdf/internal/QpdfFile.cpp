#include "platform/pdf/internal/QpdfFile.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <algorithm>
#include <memory>
#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
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

constexpr qint64 largestInMemory = 64 << 20;

/// A reader looks for the header in the first 1,024 bytes (ISO 32000-1, Annex H.3, note 13). Asking
/// first keeps the search for objects off large files of other kinds.
MaybeError checkHeader(const QString& path, qint64& size) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    return pdfError(PDFErrorUnreadable,
                    u"The file \"%1\" cannot be read: %2"_s.arg(path, file.errorString()));
  }
  size = file.size();
  if (file.read(1024).contains("%PDF-")) return std::nullopt;
  return pdfError(PDFErrorUnreadable, u"The file \"%1\" is not a PDF document."_s.arg(path));
}

QByteArray readWhole(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::shared_ptr<InputSource> memorySource(const QByteArray& name, const QByteArray& bytes) {
  // Freed by the source (see its last argument).
  auto* buffer = new Buffer(static_cast<size_t>(bytes.size()));
  std::copy(bytes.begin(), bytes.end(), buffer->getBuffer());
  return std::make_shared<BufferInputSource>(name.toStdString(), buffer, true);
}

/// A file that was cut off has lost its trailer, without which nothing is found. Its catalog may
/// still be there.
QByteArray withTrailer(const QByteArray& bytes) {
  static const QRegularExpression numbers(u"(\\d+ \\d+) $"_s);
  const qsizetype catalog = bytes.lastIndexOf("/Catalog");
  const qsizetype begin = bytes.lastIndexOf("obj", catalog);
  if (catalog < 0 || begin < 3 || bytes.mid(begin - 3, 3) == "end") return {};
  const QRegularExpressionMatch match = numbers.match(QString::fromLatin1(
      bytes.mid(std::max<qsizetype>(0, begin - 20), std::min<qsizetype>(begin, 20))));
  if (!match.hasMatch()) return {};
  return bytes + "\ntrailer << /Root " + match.captured(1).toLatin1() + " R >>\n";
}

void processMemory(QPDF& document, const QString& path, const QByteArray& bytes) {
  document.processInputSource(memorySource(QFile::encodeName(path), bytes));
  document.getAllPages();
}

void processFile(QPDF& document, const QString& path) {
  document.processFile(QFile::encodeName(path).constData());
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

void writeTo(QPDF& document, QIODevice& device) {
  DevicePipeline pipeline(device);
  QPDFWriter writer(document);
  writer.setOutputPipeline(&pipeline);
  writer.setObjectStreamMode(qpdf_o_generate);
  writer.setPreserveEncryption(false);
  writer.write();
}

std::unique_ptr<QPDF> newQpdf() {
  auto document = std::make_unique<QPDF>();
  document->setSuppressWarnings(true);
  return document;
}

MaybeError attempt(const QString& path, const std::function<void()>& process) {
  bool passwordNeeded = false;
  const MaybeError error =
      catchingQpdf(PDFErrorUnreadable, u"The document \"%1\" is damaged: "_s.arg(path), [&] {
        try {
          process();
        } catch (const QPDFExc& exception) {
          passwordNeeded = exception.getErrorCode() == qpdf_e_password;
          throw;
        }
      });
  if (!passwordNeeded) return error;
  return pdfError(PDFErrorEncrypted, u"The document \"%1\" needs a password."_s.arg(path));
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

void writePlainly(QPDF& document, QIODevice& device) {
  DevicePipeline pipeline(device);
  QPDFWriter writer(document);
  writer.setOutputPipeline(&pipeline);
  writer.setObjectStreamMode(qpdf_o_disable);
  writer.setStreamDataMode(qpdf_s_preserve);
  writer.setPreserveEncryption(false);
  writer.write();
}

Result<std::unique_ptr<QPDF>> openQpdf(const QString& path) {
  qint64 size = 0;
  if (MaybeError error = checkHeader(path, size)) return tl::unexpected(*error);
  const bool inMemory = size <= largestInMemory;
  const QByteArray bytes = inMemory ? readWhole(path) : QByteArray();
  auto document = newQpdf();
  MaybeError error = attempt(path, [&] {
    if (inMemory) {
      processMemory(*document, path, bytes);
    } else {
      processFile(*document, path);
    }
  });
  if (error && error->code == PDFErrorUnreadable && inMemory) {
    const QByteArray mended = withTrailer(bytes);
    document = newQpdf();
    if (!mended.isEmpty()) error = attempt(path, [&] { processMemory(*document, path, mended); });
  }
  if (error) return tl::unexpected(*error);
  return document;
}

MaybeError writeQpdf(QPDF& document, const QString& path) {
  QSaveFile file(path);
  const QString what = u"The document \"%1\" cannot be written: "_s.arg(path);
  if (!file.open(QIODevice::WriteOnly)) return pdfError(PDFErrorWrite, what + file.errorString());
  if (MaybeError error = catchingQpdf(PDFErrorWrite, what, [&] { writeTo(document, file); }))
    return error;
  // What waits in the buffer is not looked at by commit.
  if (!file.flush() || !file.commit()) return pdfError(PDFErrorWrite, what + file.errorString());
  return std::nullopt;
}

}  // namespace pdf
