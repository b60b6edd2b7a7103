#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "platform/base/Error.h"

namespace browsers {

class DevToolsConnection;

/// What the browser calls a page, and where the page is.
struct BrowserTab {
  QString target;
  QString address;
  QString title;
};

/// Puts tabs whose title is a window's title ("<title> - <browser>") first, in the order of the
/// windows; the others keep theirs.
void sortByStacking(QList<BrowserTab>& tabs, const QStringList& windowTitles);

/// The active tab of the front window. While a window of ours has the focus no call of the protocol
/// tells the order of the browser's windows: of several active tabs the focused one counts, then
/// the one whose window is stacked highest as far as the desktop tells, then the one that was used
/// last as far as the browser tells, then the first visible one. Blocks; not on the main thread.
Result<BrowserTab> findFrontTab(DevToolsConnection& connection);

/// The value of a page's program, a string. Blocks; not on the main thread.
Result<QString> runInTab(DevToolsConnection& connection, const QString& target,
                         const QString& program);

}  // namespace browsers
