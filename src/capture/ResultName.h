#pragma once

#include <QString>
#include <QUrl>
#include <optional>

namespace capture {

/// The address with the format's extension appended, unless its name ends in that extension
/// already. An address of a format without extension stays as it is.
QUrl withExtensionOfFormat(const QUrl& file, const std::optional<QString>& format);

/// The file in `folder` for a page of that title. What no file can be called is made legal.
QUrl resultInFolder(const QUrl& folder, const QString& title, const std::optional<QString>& format);

}  // namespace capture
