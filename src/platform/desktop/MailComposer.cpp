#include "platform/desktop/MailComposer.h"

#include <QFileInfo>
#include <vector>

#include "platform/base/Log.h"
#include "platform/desktop/internal/Launch.h"
#include "platform/desktop/internal/MailPrograms.h"
#include "platform/dispatch/Dispatch.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// A user who cancelled, or who may still be choosing a program, wants no second message.
bool mayTryAnother(const Error& error) {
  return error.code != DesktopErrorCancelled && error.code != DesktopErrorNoAnswer;
}

/// Takes the ways to a mail program one after the other until one has taken the message.
class RoutedMailComposer : public MailComposer,
                           public std::enable_shared_from_this<RoutedMailComposer> {
 public:
  explicit RoutedMailComposer(const Limits& limits) {
    routes_.push_back(thunderbirdRoute(limits.launcher));
    routes_.push_back(portalRoute(limits.portal));
    routes_.push_back(xdgEmailRoute(limits.launcher));
  }

  void newMessage(const QString& attachmentPath, Completion completion) override {
    const QFileInfo file(attachmentPath);
    MaybeError unreadable;
    if (!file.isFile() || !file.isReadable())
      unreadable = desktopError(DesktopErrorFile, u"%1 cannot be read."_s.arg(attachmentPath));
    dispatch::mainAsync([=, self = shared_from_this(), path = file.absoluteFilePath()] {
      if (!unreadable) return self->tryFrom(0, path, completion, std::nullopt);
      if (completion) completion(unreadable);
    });
  }

 private:
  void tryFrom(std::size_t first, const QString& path, const Completion& completion,
               const MaybeError& cause) {
    for (std::size_t i = first; i < routes_.size(); ++i) {
      const auto ended = [=, self = shared_from_this()](const MaybeError& error) {
        self->ended(i, path, completion, error);
      };
      if (routes_[i]->tryMessage(path, ended)) return;
    }
    const Error none = desktopError(DesktopErrorUnavailable, u"No mail program was found."_s);
    if (completion) completion(cause ? *cause : none);
  }

  void ended(std::size_t route, const QString& path, const Completion& completion,
             const MaybeError& error) {
    if (error && mayTryAnother(*error)) return tryFrom(route + 1, path, completion, error);
    if (completion) completion(error);
  }

  std::vector<std::unique_ptr<MailRoute>> routes_;
};

}  // namespace

std::shared_ptr<MailComposer> MailComposer::create(Limits limits) {
  return std::make_shared<RoutedMailComposer>(limits);
}

}  // namespace desktop
