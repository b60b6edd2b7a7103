#pragma once

#include <QList>
#include <QString>
#include <memory>

#include "platform/base/Error.h"
#include "platform/printing/PrintSettings.h"

namespace printing {

inline constexpr const char* kErrorDomain = "printing";

enum ErrorCode {
  /// No print service answers.
  ErrorNoServer = 1,
  ErrorUnknownQueue,
  /// No queue was named and there is no default one.
  ErrorNoDefaultQueue,
  /// The queue does not take jobs.
  ErrorRejected,
  /// The document cannot be read, or its copy not written.
  ErrorFile,
  /// The settings make no sense (copies below 1, a range that ends before it begins).
  ErrorSettings,
};

Error makeError(ErrorCode code, const QString& description);

struct PrinterQueue {
  QString name;
  /// What the administrator calls it; may be empty.
  QString description;
  QString location;
  QString makeAndModel;
  bool isDefault = false;
  bool acceptsJobs = true;
};

/// The printers of this machine. Calls block on the print service (bounded to about half a minute
/// of silence) and may be made on any thread but belong on a worker thread.
class PrintService {
 public:
  virtual ~PrintService() = default;

  virtual Result<QList<PrinterQueue>> queues() = 0;

  /// Hands the PDF at `path` to the queue, unchanged, and gives the job's number. A job whose
  /// document did not get through is cancelled: nothing half is printed.
  virtual Result<int> submitDocument(const QString& path, const PrintSettings& settings) = 0;
};

/// The CUPS scheduler at `server` (a host or the path of a socket); none: the one that the client
/// configuration names (CUPS_SERVER, client.conf, the local socket).
std::shared_ptr<PrintService> makePrintService(const std::optional<QString>& server = std::nullopt);

/// Delivers a finished PDF: to `settings.outputFile` as a copy (the job's number is then 0), else
/// to `service`. Blocks; for worker threads.
Result<int> deliverDocument(PrintService& service, const QString& path,
                            const PrintSettings& settings);

}  // namespace printing
