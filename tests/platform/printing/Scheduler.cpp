#include "Scheduler.h"

#include <cups/cups.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <array>

#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto kFiles = R"(SystemGroup root
ServerRoot %1/root
RequestRoot %1/spool
CacheDir %1/cache
StateDir %1/state
TempDir %1/tmp
AccessLog %1/access_log
ErrorLog %1/error_log
PageLog %1/page_log
FileDevice Yes
)"_L1;

constexpr auto kRules = R"(Listen %1/socket
Browsing Off
DefaultAuthType None
PreserveJobFiles Yes
WebInterface No
LimitRequestBody %2
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  JobPrivateAccess all
  JobPrivateValues none
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
)"_L1;

QString programPath(const QString& name) {
  return QStandardPaths::findExecutable(name,
                                        {u"/usr/sbin"_s, u"/usr/bin"_s, u"/sbin"_s, u"/bin"_s});
}

using Connection = std::unique_ptr<http_t, decltype(&httpClose)>;

Connection connectTo(const QString& socket) {
  return {httpConnect2(socket.toLocal8Bit().constData(), 631, nullptr, AF_UNSPEC,
                       HTTP_ENCRYPTION_NEVER, 1, 5000, nullptr),
          &httpClose};
}

}  // namespace

std::unique_ptr<Scheduler> Scheduler::start() {
  const QString program = programPath(u"cupsd"_s);
  if (program.isEmpty() || programPath(u"lpadmin"_s).isEmpty()) return nullptr;
  auto scheduler = std::unique_ptr<Scheduler>(new Scheduler);
  scheduler->writeConfiguration();
  const QString folder = scheduler->folder_.path();
  // The scheduler must not outlive a test that crashes.
  scheduler->process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
  scheduler->process_.start(program, {u"-f"_s, u"-c"_s, folder + u"/cupsd.conf"_s, u"-s"_s,
                                      folder + u"/cups-files.conf"_s});
  const bool isReady = support::waitFor([&] { return scheduler->isAnswering(); }) &&
                       scheduler->addQueue(u"office"_s, u"Büro “oben”"_s) &&
                       scheduler->addQueue(u"attic"_s, u"Attic"_s) &&
                       scheduler->addQueue(u"broken"_s, u"Broken"_s) &&
                       scheduler->run(u"cupsreject"_s, {u"broken"_s}) &&
                       scheduler->run(u"lpadmin"_s, {u"-d"_s, u"office"_s});
  if (!isReady) qFatal("The print scheduler did not start");
  return scheduler;
}

Scheduler::~Scheduler() {
  process_.terminate();
  if (!process_.waitForFinished(10'000)) process_.kill();
}

void Scheduler::write(const QString& name, const QString& text) const {
  QFile file(folder_.filePath(name));
  if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
    qFatal("no room for the scheduler");
}

void Scheduler::writeConfiguration() const {
  for (const QString& name : {u"root"_s, u"spool"_s, u"cache"_s, u"state"_s, u"tmp"_s})
    QDir(folder_.path()).mkdir(name);
  // The super-user's scheduler hands its work to an account without rights.
  const QString account = ::geteuid() == 0 ? u"User lp\nGroup lp\n"_s : QString();
  write(u"cups-files.conf"_s, account + QString(kFiles).arg(folder_.path()));
  write(u"cupsd.conf"_s, QString(kRules).arg(folder_.path()).arg(kMostBytes));
}

bool Scheduler::isAnswering() const {
  return QFile::exists(socket()) && connectTo(socket());
}

bool Scheduler::run(const QString& program, const QStringList& arguments) const {
  QProcess process;
  process.start(programPath(program), QStringList{u"-h"_s, socket()} + arguments);
  return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit &&
         process.exitCode() == 0;
}

bool Scheduler::addQueue(const QString& name, const QString& description) const {
  return run(u"lpadmin"_s, {u"-p"_s, name, u"-v"_s, u"file:/dev/null"_s, u"-m"_s, u"raw"_s, u"-D"_s,
                            description}) &&
         run(u"cupsaccept"_s, {name});
}

QByteArray Scheduler::document(int job) const {
  QFile file(folder_.filePath(u"spool/d%1-001"_s.arg(job, 5, 10, QChar(u'0'))));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no document");
}

QMap<QString, QString> Scheduler::attributes(int job) const {
  const Connection connection = connectTo(socket());
  ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
  const QByteArray uri = "ipp://localhost/jobs/" + QByteArray::number(job);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr, uri.constData());
  ipp_t* response = cupsDoRequest(connection.get(), request, "/");
  QMap<QString, QString> attributes;
  for (ipp_attribute_t* each = ippFirstAttribute(response); each;
       each = ippNextAttribute(response)) {
    std::array<char, 1024> text{};
    ippAttributeString(each, text.data(), text.size());
    attributes.insert(QString::fromUtf8(ippGetName(each)), QString::fromUtf8(text.data()));
  }
  ippDelete(response);
  return attributes;
}

QList<int> Scheduler::jobs() const {
  const Connection connection = connectTo(socket());
  cups_job_t* list = nullptr;
  const int count = cupsGetJobs2(connection.get(), &list, nullptr, 0, CUPS_WHICHJOBS_ACTIVE);
  QList<int> jobs;
  for (int i = 0; i < count; ++i)
    jobs.append(list[i].id);
  cupsFreeJobs(count, list);
  return jobs;
}
