#pragma once

#include <QString>
#include <vector>

#include "platform/base/Error.h"

namespace pdf {

struct MergeSource {
  QString path;
  /// The text of the document's heading in the outline; empty: the document's own title, else the
  /// name of its file.
  QString title;
};

struct SkippedSource {
  QString path;
  Error reason;
};

/// Joins documents in the order given; the pages of each keep their order, size and rotation.
///
/// Each document's outline stands under one heading of its own. Links inside a document and its
/// named destinations go on working: a name that an earlier document has taken is changed, in the
/// destination and in everything that refers to it. Tags, layers, page labels, attachments and
/// languages are joined. Equal fonts, pictures and other page resources are stored once. Form
/// fields become part of the page, as they look. Document attributes are those of the first
/// readable file. Scripts of whole documents are left out.
///
/// Damaged files are repaired where possible. A file that cannot be read, needs a password or has
/// no page is skipped; that all of them are is an error. Few of the files are held in memory at a
/// time. The joined file appears at `target` whole or not at all; `target` may be one of the
/// sources.
///
/// Returns what was skipped, also logged with a line for each. Any thread.
Result<std::vector<SkippedSource>> mergeDocuments(const std::vector<MergeSource>& sources,
                                                  const QString& target);

}  // namespace pdf
