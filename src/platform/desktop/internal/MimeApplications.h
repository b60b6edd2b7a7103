#pragma once

#include <QStringList>

namespace desktop {

/// A program as the desktop knows it.
struct DesktopEntry {
  /// For instance "org.gnome.Evolution.desktop"; empty: no program.
  QString identifier;
  QString path;
};

/// The program that opens a MIME type or an address scheme ("x-scheme-handler/mailto"), by the
/// freedesktop "Association between MIME types and applications" lists: the user's choice, else the
/// desktop's, else any program that says it can.
DesktopEntry defaultApplication(const QString& mimeType);

/// The program that the entry starts: the first word of its Exec key; empty when it has none.
QString programOf(const DesktopEntry& entry);

/// The words that have the program open the file: its Exec key with the field codes filled in
/// (Desktop Entry Specification, "The Exec key"). Empty when it takes no files.
QStringList openCommand(const DesktopEntry& entry, const QString& path);

}  // namespace desktop
