#pragma once

#include <QDateTime>
#include <QString>

#include "platform/base/Error.h"

namespace desktop {

/// The largest attachment that a note may hold (EDAM limit of a resource for paying users).
inline constexpr qint64 longestAttachment = 209'715'200;

/// A note with one attachment.
struct Note {
  QString title;
  QString attachmentPath;
  QDateTime created;
};

/// Writes the note as an ENEX document (evernote-export3.dtd), whole or not at all. The attachment
/// is streamed, never held in memory. A title is bounded to what a note may have: 1 to 255
/// characters, no control characters, no blanks at its ends.
MaybeError writeEnexFile(const Note& note, const QString& path);

}  // namespace desktop
