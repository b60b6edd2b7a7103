#pragma once

// Only sources of this folder include this header: qpdf's types end here.

#include <QDateTime>
#include <QString>
#include <optional>
#include <qpdf/QPDFObjectHandle.hh>

namespace pdf {

/// A text string object (ISO 32000-1, 7.9.2.2).
QPDFObjectHandle textObject(const QString& text);

/// The text of a string object, or nothing when the object is none.
std::optional<QString> textOf(QPDFObjectHandle object);

/// A date string (ISO 32000-1, 7.9.4), with the offset from universal time.
QString dateText(const QDateTime& date);

/// Reads a date string; every part after the year may be missing.
std::optional<QDateTime> dateFromText(const QString& text);

}  // namespace pdf
