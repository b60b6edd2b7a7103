#include "platform/browsers/FrontTab.h"

#include <QJsonArray>
#include <QSet>
#include <algorithm>
#include <utility>

#include "platform/browsers/BrowserError.h"
#include "platform/browsers/DevToolsConnection.h"
#include "platform/desktop/WindowTitles.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace browsers {
namespace {

constexpr auto commandLimit = 10s;
/// A page that hangs must not hold up the search for the front one.
constexpr auto probeLimit = 2s;
constexpr auto programLimit = 30s;
constexpr qsizetype mostProbes = 50;

/// A session with one page, while it exists.
class Attachment {
 public:
  Attachment(DevToolsConnection& connection, const QString& target) : connection_(connection) {
    const auto reply =
        connection.call(u"Target.attachToTarget"_s, {{u"targetId"_s, target}, {u"flatten"_s, true}},
                        {}, commandLimit);
    if (reply) session_ = reply->value(u"sessionId"_s).toString();
  }
  ~Attachment() {
    if (!session_.isEmpty())
      (void)connection_.call(u"Target.detachFromTarget"_s, {{u"sessionId"_s, session_}}, {},
                             probeLimit);
  }
  Attachment(const Attachment&) = delete;
  Attachment& operator=(const Attachment&) = delete;

  Result<QJsonValue> evaluate(const QString& program, std::chrono::milliseconds limit) {
    if (session_.isEmpty()) return browserFailure(NoPage, u"The page cannot be reached."_s);
    const auto reply = connection_.call(u"Runtime.evaluate"_s,
                                        {{u"expression"_s, program},
                                         {u"returnByValue"_s, true},
                                         {u"timeout"_s, static_cast<qint64>(limit.count())}},
                                        session_, limit + 1s);
    if (!reply) return tl::unexpected(reply.error());
    if (reply->contains(u"exceptionDetails"_s))
      return browserFailure(Refused, u"The page did not let itself be read."_s);
    return reply->value(u"result"_s).toObject().value(u"value"_s);
  }

 private:
  DevToolsConnection& connection_;
  QString session_;
};

struct Targets {
  QList<BrowserTab> pages;
  /// The address and title of each window's active tab; newer browsers tell.
  QSet<std::pair<QString, QString>> active;
};

Targets sorted(const QJsonArray& infos) {
  Targets targets;
  for (const auto& value : infos) {
    const QJsonObject info = value.toObject();
    const QString type = info.value(u"type"_s).toString();
    const QString address = info.value(u"url"_s).toString();
    const QString title = info.value(u"title"_s).toString();
    const bool isActive = info.value(u"embedderData"_s).toObject().value(u"tabActive"_s).toBool();
    if (type == u"tab" && isActive) targets.active.insert({address, title});
    if (type == u"page" && !address.startsWith(u"devtools:"))
      targets.pages.append({info.value(u"targetId"_s).toString(), address, title});
  }
  return targets;
}

QList<BrowserTab> candidates(const Targets& targets) {
  QList<BrowserTab> active;
  for (const BrowserTab& page : targets.pages)
    if (targets.active.contains({page.address, page.title})) active.append(page);
  return active.isEmpty() ? targets.pages : active;
}

Result<QList<BrowserTab>> openTabs(DevToolsConnection& connection) {
  const QJsonArray filter{QJsonObject{{u"type"_s, u"page"_s}}, QJsonObject{{u"type"_s, u"tab"_s}},
                          QJsonObject{{u"exclude"_s, true}}};
  const auto reply =
      connection.call(u"Target.getTargets"_s, {{u"filter"_s, filter}}, {}, commandLimit);
  if (!reply) return tl::unexpected(reply.error());
  return candidates(sorted(reply->value(u"targetInfos"_s).toArray()));
}

/// `rank` gives a tab's place; equal ones keep their order.
template <class Rank>
void sortBy(QList<BrowserTab>& tabs, Rank rank) {
  std::stable_sort(tabs.begin(), tabs.end(),
                   [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
}

void sortByUse(QList<BrowserTab>& tabs, const DevToolsEndpoint& endpoint) {
  const QStringList order = targetsByUse(endpoint, probeLimit).value_or(QStringList());
  sortBy(tabs, [&order](const BrowserTab& tab) {
    const qsizetype place = order.indexOf(tab.target);
    return place < 0 ? order.size() : place;
  });
}

enum Sight { Hidden, Visible, Focused };

Sight sightOf(DevToolsConnection& connection, const BrowserTab& tab) {
  const auto sight = Attachment(connection, tab.target)
                         .evaluate(
                             u"document.hasFocus() ? 2 : "
                             "document.visibilityState == 'visible' ? 1 : 0"_s,
                             probeLimit);
  return sight ? static_cast<Sight>(std::clamp(sight->toInt(), 0, 2)) : Hidden;
}

}  // namespace

void sortByStacking(QList<BrowserTab>& tabs, const QStringList& windowTitles) {
  sortBy(tabs, [&windowTitles](const BrowserTab& tab) {
    const auto window = std::find_if(
        windowTitles.begin(), windowTitles.end(),
        [&tab](const QString& title) { return title.startsWith(tab.title + u" - "_s); });
    return std::distance(windowTitles.begin(), window);
  });
}

Result<BrowserTab> findFrontTab(DevToolsConnection& connection) {
  auto tabs = openTabs(connection);
  if (!tabs) return tl::unexpected(tabs.error());
  if (tabs->isEmpty()) return browserFailure(NoPage, u"The browser shows no page."_s);
  if (tabs->size() == 1) return tabs->first();
  sortByUse(*tabs, connection.endpoint());
  sortByStacking(*tabs, desktop::windowTitlesFromFront());
  std::optional<BrowserTab> visible;
  for (const BrowserTab& tab : tabs->first(std::min(tabs->size(), mostProbes))) {
    const Sight sight = sightOf(connection, tab);
    if (sight == Focused) return tab;
    if (sight == Visible && !visible) visible = tab;
  }
  return visible.value_or(tabs->first());
}

Result<QString> runInTab(DevToolsConnection& connection, const QString& target,
                         const QString& program) {
  const auto value = Attachment(connection, target).evaluate(program, programLimit);
  if (!value) return tl::unexpected(value.error());
  if (!value->isString()) return browserFailure(NoPage, u"The page gave no text."_s);
  return value->toString();
}

}  // namespace browsers
