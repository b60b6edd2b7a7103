#pragma once

#include <QString>
#include <QStringList>

#include "platform/base/Error.h"

namespace web {

/// A browser program that can be driven.
struct EngineProgram {
  QString path;
  /// What this program needs on top of the arguments that all of them get.
  QStringList arguments;
};

/// The program named in CORVALIS_ENGINE, or the first one known that this machine has.
Result<EngineProgram> findEngineProgram();
/// The program at `path`, or found on PATH by that name.
Result<EngineProgram> engineProgramAt(const QString& path);

/// Splits `text` into words as a shell does (IEEE 1003.1, Shell Command Language, 2.2 Quoting):
/// white space, single and double quotes and the backslash; nothing is expanded. An open quote ends
/// with the text.
QStringList splitShellWords(const QString& text);

enum class EngineUse {
  /// Pages may be shown and used.
  LiveViews,
  /// Pages are only converted. They are painted as a whole, so that what lies beyond the viewport
  /// is pictured without being laid out anew; wheel and keys do not scroll such a page.
  Conversions
};

/// All arguments for the browser but its folder: ours, the program's, those of
/// CORVALIS_ENGINE_ARGS.
QStringList engineArguments(const EngineProgram& program, EngineUse use);

}  // namespace web
