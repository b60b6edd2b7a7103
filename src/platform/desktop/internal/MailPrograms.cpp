#include "platform/desktop/internal/MailPrograms.h"

#include <fcntl.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>

#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/MimeApplications.h"
#include "platform/desktop/internal/PortalRequest.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// Empty when the user's mail program is another one, or runs in a sandbox.
QString thunderbirdProgram() {
  const DesktopEntry entry = defaultApplication(u"x-scheme-handler/mailto"_s);
  if (!entry.identifier.contains(u"thunderbird"_s, Qt::CaseInsensitive)) return {};
  const QString program = programOf(entry);
  const bool sandboxed = program.contains(u"/snap/"_s) || !program.contains(u"thunderbird"_s);
  return sandboxed ? QString() : findProgram(program);
}

class ThunderbirdRoute : public MailRoute {
 public:
  explicit ThunderbirdRoute(std::chrono::milliseconds patience) : patience_(patience) {}

  bool tryMessage(const QString& attachmentPath, MailComposer::Completion completion) override {
    const QString program = thunderbirdProgram();
    if (program.isEmpty()) return false;
    // Its parser splits at commas and ends values at quotes, also inside an address.
    const QString fields =
        u"attachment='"_s + QString::fromLatin1(fileAddress(attachmentPath)) + u'\'';
    launch(program, {u"-compose"_s, fields}, patience_, std::move(completion));
    return true;
  }

 private:
  std::chrono::milliseconds patience_;
};

class PortalRoute : public MailRoute {
 public:
  explicit PortalRoute(std::chrono::milliseconds limit) : limit_(limit) {
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
  }

  bool tryMessage(const QString& attachmentPath, MailComposer::Completion completion) override {
    if (!QDBusConnection::sessionBus().isConnected()) return false;
    const int descriptor =
        ::open(QFile::encodeName(attachmentPath).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    QDBusUnixFileDescriptor attachment;
    attachment.giveFileDescriptor(descriptor);
    const auto attachments = QVariant::fromValue(QList<QDBusUnixFileDescriptor>{attachment});
    callPortal({u"org.freedesktop.portal.Email"_s,
                u"ComposeEmail"_s,
                {QString()},
                {{u"attachment_fds"_s, attachments}}},
               limit_, [completion = std::move(completion)](const Result<QVariantMap>& answer) {
                 completion(answer ? MaybeError() : answer.error());
               });
    return true;
  }

 private:
  std::chrono::milliseconds limit_;
};

bool isLostInScripts(QChar character) {
  return character == u'\\' || character.category() == QChar::Other_Control;
}

/// xdg-email loses line breaks and backslashes of a path. Such a file is given to it under another
/// path, which stays until the system clears its temporary folder.
QString plainPath(const QString& path) {
  if (std::none_of(path.begin(), path.end(), isLostInScripts)) return path;
  QTemporaryDir folder;
  folder.setAutoRemove(false);
  QString name = QFileInfo(path).fileName();
  std::replace_if(name.begin(), name.end(), isLostInScripts, QChar(u' '));
  const QString plain = folder.filePath(name);
  return QFile::copy(path, plain) ? plain : path;
}

class XdgEmailRoute : public MailRoute {
 public:
  explicit XdgEmailRoute(std::chrono::milliseconds patience) : patience_(patience) {}

  bool tryMessage(const QString& attachmentPath, MailComposer::Completion completion) override {
    const QString program = findProgram(u"xdg-email"_s);
    if (program.isEmpty()) return false;
    launch(program, {u"--utf8"_s, u"--attach"_s, plainPath(attachmentPath)}, patience_,
           std::move(completion));
    return true;
  }

 private:
  std::chrono::milliseconds patience_;
};

}  // namespace

std::unique_ptr<MailRoute> thunderbirdRoute(std::chrono::milliseconds patience) {
  return std::make_unique<ThunderbirdRoute>(patience);
}

std::unique_ptr<MailRoute> portalRoute(std::chrono::milliseconds limit) {
  return std::make_unique<PortalRoute>(limit);
}

std::unique_ptr<MailRoute> xdgEmailRoute(std::chrono::milliseconds patience) {
  return std::make_unique<XdgEmailRoute>(patience);
}

}  // namespace desktop
