#pragma once

#include <QString>

/// The programs that read a page, for whoever can run a script in it: the user's browsers, the mini
/// browser. Each is one line of plain JavaScript (ECMAScript 3, without double quotes, so that it
/// can stand in an AppleScript text) whose value is a string.
namespace browsers {

/// The markup as the browser holds it now.
QString documentProgram();

/// The style rules that apply to all media, then those for the screen, each followed by a space.
/// Sheets of other origins cannot be read and are left out.
QString stylesProgram();

/// For each inline frame, in document order, "iframe::" and its encoded document; nothing behind
/// the marker when the frame has no identifier or is of another origin.
QString framesProgram();

}  // namespace browsers
