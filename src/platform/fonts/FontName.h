#pragma once

#include <QFont>
#include <QString>

#include "platform/base/Font.h"

/// Names of fonts, as they are kept and as the font system knows them: a family, or a family and
/// one of its styles, "DejaVu Sans" or "DejaVu Sans Bold". Needs the application object.
namespace fonts {

bool isKnown(const QString& name);

/// An unknown name gives what the font system puts in its place.
QFont fontNamed(const Font& font);

/// Regular styles go without saying.
QString nameOf(const QFont& font);

}  // namespace fonts
