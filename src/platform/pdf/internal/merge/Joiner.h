#pragma once

#include <QString>

#include "platform/pdf/internal/merge/Destinations.h"
#include "platform/pdf/internal/merge/Layers.h"
#include "platform/pdf/internal/merge/Outlines.h"
#include "platform/pdf/internal/merge/Tags.h"

namespace pdf {

/// Joins documents in a new file one by one. A document is not needed once it is added.
class Joiner {
 public:
  explicit Joiner(const QString& path);

  /// Whether the file takes no more; `finish` says why.
  bool hasFailed() const { return file_.hasFailed(); }

  /// `title` is the heading's text; an empty one stands for the document's own title, or
  /// `otherwise`.
  void add(const SourceFile& document, const QString& title, const QString& otherwise);

  /// Called when at least one document has been added, or the file has failed.
  MaybeError finish();

 private:
  void reservePages(const SourceFile& document, ObjectCopier& copier);
  void copyPages(const SourceFile& document, size_t firstPage, ObjectCopier& copier);
  void copyAttachments(const SourceFile& document, ObjectCopier& copier);
  void copyPageLabels(const SourceFile& document, size_t firstPage, ObjectCopier& copier);
  void copyAttributes(const SourceFile& document, ObjectCopier& copier);
  void writePageTree();
  std::string namesEntry();
  std::string catalog();

  CompactFile file_;
  ResourcePool pool_;
  int pageTree_;
  int tagRoot_;
  std::vector<int> pages_;
  NameTexts destinations_;
  NameTexts attachments_;
  std::vector<DocumentHeading> headings_;
  Tags tags_;
  Layers layers_;
  std::string pageLabels_;  ///< page index and label in turn
  bool hasPageLabels_ = false;
  std::string attributes_;  ///< entries of the catalog that the first document gives
  int information_ = 0;
  std::string version_;
};

}  // namespace pdf
