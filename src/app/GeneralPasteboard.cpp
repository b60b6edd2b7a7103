#include "app/GeneralPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <algorithm>
#include <iterator>

namespace {

const QMimeData* contents() {
  return QGuiApplication::clipboard()->mimeData();
}

QList<QUrl> filesIn(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  QList<QUrl> files;
  std::copy_if(urls.begin(), urls.end(), std::back_inserter(files),
               [](const QUrl& url) { return url.isLocalFile(); });
  return files;
}

}  // namespace

QStringList GeneralPasteboard::plainTexts() const {
  const QMimeData* data = contents();
  // Copied files carry their paths as text too; they are files, not text with addresses.
  if (!data || !data->hasText() || !filesIn(*data).isEmpty()) return {};
  return {data->text()};
}

QList<QUrl> GeneralPasteboard::fileURLs() const {
  const QMimeData* data = contents();
  return data ? filesIn(*data) : QList<QUrl>();
}
