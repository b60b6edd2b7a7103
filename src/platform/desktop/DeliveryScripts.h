#pragma once

#include <QString>

/// The fixed script texts for the macOS programs that take files over, filled in by plain
/// substitution: a double quote in a path or title breaks the script.
namespace desktop {

/// A new, visible message in Mail with the file as its only attachment.
QString mailScript(const QString& path);

/// The file itself (not its contents) on the clipboard.
QString fileClipboardScript(const QString& path);

/// Text on the clipboard.
QString textClipboardScript(const QString& text);

/// A note in Evernote's notebook "Import" with the title as title and text and the file attached.
QString evernoteScript(const QString& path, const QString& title);

/// The property list that marks a file with the address it came from (extended attribute
/// com.apple.metadata:kMDItemWhereFroms); the address goes in as it is.
QString whereFromPropertyList(const QString& address);

/// The shell command, as a script, that sets the attribute.
QString whereFromScript(const QString& address, const QString& path);

}  // namespace desktop
