#pragma once

#include <QString>
#include <optional>

/// Names that a user gives to files, and the formats that they stand for.
namespace OutputName {

/// The format whose files usually carry the name's extension, in any capitals.
std::optional<QString> format(const QString& file);

/// The name as it was given where its extension is a usual spelling of the format's own, as in
/// "page.jpeg" and "PAGE.TIF"; any other name has the format's extension appended.
QString withExtension(const QString& file, const QString& format);

}  // namespace OutputName
