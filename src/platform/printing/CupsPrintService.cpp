#include <cups/cups.h>

#include <QFile>
#include <algorithm>
#include <array>

#include "platform/printing/PrintService.h"

namespace printing {

using namespace Qt::StringLiterals;

namespace {

constexpr int kConnectMilliseconds = 10'000;
constexpr double kSilenceSeconds = 30;
constexpr int kMostCopies = 9999;

using Connection = std::unique_ptr<http_t, decltype(&httpClose)>;
using Details = std::unique_ptr<cups_dinfo_t, decltype(&cupsFreeDestInfo)>;

class Destinations {
 public:
  Destinations() = default;
  Destinations(const Destinations&) = delete;
  Destinations& operator=(const Destinations&) = delete;
  ~Destinations() { cupsFreeDests(count, list); }

  int count = 0;
  cups_dest_t* list = nullptr;
};

class Options {
 public:
  Options() = default;
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;
  ~Options() { cupsFreeOptions(count, list); }

  void add(const QString& name, const QString& value) {
    count = cupsAddOption(name.toUtf8().constData(), value.toUtf8().constData(), count, &list);
  }

  int count = 0;
  cups_option_t* list = nullptr;
};

QString optionOf(const cups_dest_t& destination, const char* name) {
  return QString::fromUtf8(cupsGetOption(name, destination.num_options, destination.options));
}

PrinterQueue queueOf(const cups_dest_t& destination) {
  PrinterQueue queue;
  queue.name = QString::fromUtf8(destination.name);
  if (destination.instance) queue.name += u'/' + QString::fromUtf8(destination.instance);
  queue.description = optionOf(destination, "printer-info");
  queue.location = optionOf(destination, "printer-location");
  queue.makeAndModel = optionOf(destination, "printer-make-and-model");
  queue.isDefault = destination.is_default != 0;
  queue.acceptsJobs = optionOf(destination, "printer-is-accepting-jobs") != u"false"_s;
  return queue;
}

Error lastError(const QString& queue) {
  const QString words = QString::fromUtf8(cupsLastErrorString());
  switch (cupsLastError()) {
    case IPP_STATUS_ERROR_NOT_FOUND:
      return makeError(ErrorUnknownQueue, u"There is no printer “%1”."_s.arg(queue));
    case IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS:
      return makeError(ErrorRejected,
                       u"The printer “%1” takes no documents at the moment."_s.arg(queue));
    case IPP_STATUS_ERROR_SERVICE_UNAVAILABLE:
      return makeError(ErrorNoServer, u"The print service does not answer: %1"_s.arg(words));
    default:
      return makeError(ErrorRejected,
                       u"The printer “%1” did not take the document: %2"_s.arg(queue, words));
  }
}

QString keyword(Sides sides) {
  switch (sides) {
    case Sides::OneSided:
      return QString::fromLatin1(CUPS_SIDES_ONE_SIDED);
    case Sides::TwoSidedLongEdge:
      return QString::fromLatin1(CUPS_SIDES_TWO_SIDED_PORTRAIT);
    case Sides::TwoSidedShortEdge:
      return QString::fromLatin1(CUPS_SIDES_TWO_SIDED_LANDSCAPE);
    case Sides::PrinterDefault:
      break;
  }
  return {};
}

/// The protocol wants ranges in ascending order and apart (RFC 8011, section 5.2.7).
QString pageRanges(QList<PageRange> ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const PageRange& one, const PageRange& other) { return one.first < other.first; });
  QList<PageRange> apart;
  for (const PageRange& range : ranges) {
    if (!apart.isEmpty() && range.first <= apart.last().last)
      apart.last().last = std::max(apart.last().last, range.last);
    else
      apart.append(range);
  }
  QStringList texts;
  for (const PageRange& range : apart)
    texts.append(u"%1-%2"_s.arg(range.first).arg(range.last));
  return texts.join(u',');
}

MaybeError checked(const PrintSettings& settings) {
  if (settings.copies < 1 || settings.copies > kMostCopies)
    return makeError(ErrorSettings, u"%1 copies cannot be printed."_s.arg(settings.copies));
  for (const PageRange& range : settings.pageRanges)
    if (range.first < 1 || range.last < range.first)
      return makeError(ErrorSettings,
                       u"There are no pages %1 to %2."_s.arg(range.first).arg(range.last));
  return std::nullopt;
}

void addOptions(Options& options, const PrintSettings& settings) {
  options.add(QString::fromLatin1(CUPS_COPIES), QString::number(settings.copies));
  if (!settings.pageRanges.isEmpty())
    options.add(u"page-ranges"_s, pageRanges(settings.pageRanges));
  if (settings.sides != Sides::PrinterDefault)
    options.add(QString::fromLatin1(CUPS_SIDES), keyword(settings.sides));
  if (settings.media) options.add(QString::fromLatin1(CUPS_MEDIA), *settings.media);
  if (settings.orientation)
    options.add(QString::fromLatin1(CUPS_ORIENTATION),
                QString::fromLatin1(*settings.orientation == PaperOrientationLandscape
                                        ? CUPS_ORIENTATION_LANDSCAPE
                                        : CUPS_ORIENTATION_PORTRAIT));
  for (const auto& [name, value] : settings.options.asKeyValueRange())
    options.add(name, value);
}

/// One job on its way: created, then filled.
class Submission {
 public:
  Submission(http_t* connection, cups_dest_t* destination, cups_dinfo_t* details)
      : connection_(connection), destination_(destination), details_(details) {}

  Result<int> submit(QFile& document, const Options& options, const QString& title) {
    const QByteArray name = title.toUtf8();
    if (cupsCreateDestJob(connection_, destination_, details_, &job_, name.constData(),
                          options.count, options.list) > IPP_STATUS_OK_EVENTS_COMPLETE)
      return tl::unexpected(lastError(queue()));
    if (const MaybeError error = send(document, name)) return tl::unexpected(*error);
    return job_;
  }

  /// 0 as long as there is none.
  int job() const { return job_; }

 private:
  QString queue() const { return QString::fromUtf8(destination_->name); }

  MaybeError send(QFile& document, const QByteArray& name) {
    http_status_t status = cupsStartDestDocument(connection_, destination_, details_, job_,
                                                 name.constData(), CUPS_FORMAT_PDF, 0, nullptr, 1);
    std::array<char, 65536> buffer;
    qint64 count = 0;
    while (status == HTTP_STATUS_CONTINUE &&
           (count = document.read(buffer.data(), buffer.size())) > 0)
      status = cupsWriteRequestData(connection_, buffer.data(), static_cast<size_t>(count));
    if (count < 0)
      return makeError(
          ErrorFile, u"“%1” cannot be read: %2"_s.arg(document.fileName(), document.errorString()));
    const bool isSent = status == HTTP_STATUS_CONTINUE &&
                        cupsFinishDestDocument(connection_, destination_, details_) <=
                            IPP_STATUS_OK_EVENTS_COMPLETE;
    return isSent ? std::nullopt : std::optional(lastError(queue()));
  }

  http_t* connection_;
  cups_dest_t* destination_;
  cups_dinfo_t* details_;
  int job_ = 0;
};

class CupsPrintService : public PrintService {
 public:
  explicit CupsPrintService(std::optional<QString> server) : server_(std::move(server)) {}

  Result<QList<PrinterQueue>> queues() override;
  Result<int> submitDocument(const QString& path, const PrintSettings& settings) override;

 private:
  Result<Connection> connect() const;
  void cancel(const char* queue, int job) const;
  Result<int> submitOn(http_t* connection, QFile& document, const PrintSettings& settings) const;

  std::optional<QString> server_;
};

Result<Connection> CupsPrintService::connect() const {
  const QByteArray server = server_ ? server_->toLocal8Bit() : QByteArray(cupsServer());
  Connection connection(httpConnect2(server.constData(), ippPort(), nullptr, AF_UNSPEC,
                                     cupsEncryption(), 1, kConnectMilliseconds, nullptr),
                        &httpClose);
  if (!connection)
    return tl::unexpected(makeError(
        ErrorNoServer,
        u"The print service at “%1” does not answer."_s.arg(QString::fromLocal8Bit(server))));
  httpSetTimeout(
      connection.get(), kSilenceSeconds, [](http_t*, void*) { return 0; }, nullptr);
  return connection;
}

Result<QList<PrinterQueue>> CupsPrintService::queues() {
  const auto connection = connect();
  if (!connection) return tl::unexpected(connection.error());
  Destinations destinations;
  destinations.count = cupsGetDests2(connection->get(), &destinations.list);
  QList<PrinterQueue> queues;
  for (int i = 0; i < destinations.count; ++i)
    queues.append(queueOf(destinations.list[i]));
  return queues;
}

Result<int> CupsPrintService::submitDocument(const QString& path, const PrintSettings& settings) {
  if (const MaybeError error = checked(settings)) return tl::unexpected(*error);
  QFile document(path);
  if (!document.open(QIODevice::ReadOnly))
    return tl::unexpected(
        makeError(ErrorFile, u"“%1” cannot be read: %2"_s.arg(path, document.errorString())));
  if (document.size() == 0)
    return tl::unexpected(
        makeError(ErrorFile, u"“%1” is empty: there is nothing to print."_s.arg(path)));
  const auto connection = connect();
  if (!connection) return tl::unexpected(connection.error());
  return submitOn(connection->get(), document, settings);
}

/// Removes a job without its whole document, on a connection that does not have half a document on
/// its way.
void CupsPrintService::cancel(const char* queue, int job) const {
  if (const auto connection = connect()) cupsCancelJob2(connection->get(), queue, job, 1);
}

Result<int> CupsPrintService::submitOn(http_t* connection, QFile& document,
                                       const PrintSettings& settings) const {
  const QList<QByteArray> name = settings.queue.value_or(QString()).toUtf8().split('/');
  Destinations destination;
  destination.list =
      cupsGetNamedDest(connection, settings.queue ? name.value(0).constData() : nullptr,
                       name.size() > 1 ? name[1].constData() : nullptr);
  if (!destination.list)
    return tl::unexpected(
        settings.queue
            ? makeError(ErrorUnknownQueue, u"There is no printer “%1”."_s.arg(*settings.queue))
            : makeError(ErrorNoDefaultQueue, u"No default printer is set."_s));
  destination.count = 1;
  // This also makes the queue of a printer that was only found on the network.
  const Details details(cupsCopyDestInfo(connection, destination.list), &cupsFreeDestInfo);
  if (!details) return tl::unexpected(lastError(QString::fromUtf8(destination.list->name)));
  Options options;
  // What the user has set with lpoptions comes first; the job's own settings replace it.
  for (int i = 0; i < destination.list->num_options; ++i)
    options.add(QString::fromUtf8(destination.list->options[i].name),
                QString::fromUtf8(destination.list->options[i].value));
  addOptions(options, settings);
  Submission submission(connection, destination.list, details.get());
  const Result<int> job = submission.submit(document, options, settings.title);
  if (!job && submission.job() != 0) cancel(destination.list->name, submission.job());
  return job;
}

}  // namespace

std::shared_ptr<PrintService> makePrintService(const std::optional<QString>& server) {
  return std::make_shared<CupsPrintService>(server);
}

}  // namespace printing
