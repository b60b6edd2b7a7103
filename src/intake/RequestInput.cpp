#include "intake/RequestInput.h"

#include "delivery/CVUtils.h"
#include "intake/CapturePayload.h"

using namespace Qt::StringLiterals;

namespace RequestInput {
namespace {

constexpr qint64 blockSize = 1024LL * 1024;

void removeLineBreaksBehind(QByteArray& bytes) {
  while (bytes.endsWith('\n') || bytes.endsWith('\r'))
    bytes.chop(1);
}

/// One byte beyond the limit is enough to know that there are more.
Result<QByteArray> readAll(QIODevice& device, qint64 limit) {
  QByteArray bytes;
  QByteArray block(blockSize, Qt::Uninitialized);
  while (bytes.size() <= limit) {
    const qint64 count = device.read(block.data(), qMin(blockSize, limit + 1 - bytes.size()));
    if (count < 0) {
      return failure(errorDomain, Unreadable,
                     u"The request could not be read: "_s + device.errorString());
    }
    if (count == 0 && !device.waitForReadyRead(-1)) break;
    bytes.append(block.constData(), count);
  }
  return bytes;
}

}  // namespace

Result<QString> readRequestText(QIODevice& device, qint64 limit) {
  Result<QByteArray> bytes = readAll(device, limit);
  if (!bytes) return tl::unexpected(bytes.error());
  if (bytes->size() > limit) {
    return failure(errorDomain, TooLarge,
                   u"The request is larger than %1 MB."_s.arg(limit / 1024 / 1024));
  }
  removeLineBreaksBehind(*bytes);
  if (bytes->isEmpty()) return failure(errorDomain, Empty, u"The request is empty."_s);
  if (!bytes->isValidUtf8()) return failure(errorDomain, NotText, u"The request is not text."_s);
  return QString::fromUtf8(*bytes);
}

Result<CapturedPage> capturedPage(const QString& request, const CVUtils& utils) {
  const CapturePayload payload = CapturePayload::decode(request);
  if (!payload.address) {
    return failure(errorDomain, NoAddress,
                   u"The request has no web address that a page could come from."_s);
  }
  return CapturedPage{*payload.address,
                      utils.mergePageCode(payload.page, payload.styles, payload.frames)};
}

}  // namespace RequestInput
