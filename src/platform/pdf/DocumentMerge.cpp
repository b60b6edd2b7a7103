#include "platform/pdf/DocumentMerge.h"

#include <QFileInfo>
#include <algorithm>

#include "platform/base/Log.h"
#include "platform/pdf/internal/Contents.h"
#include "platform/pdf/internal/Information.h"
#include "platform/pdf/internal/QpdfFile.h"
#include "platform/pdf/internal/merge/Destinations.h"
#include "platform/pdf/internal/merge/Fields.h"
#include "platform/pdf/internal/merge/Layers.h"
#include "platform/pdf/internal/merge/ObjectCopier.h"
#include "platform/pdf/internal/merge/Outlines.h"
#include "platform/pdf/internal/merge/ReadAhead.h"
#include "platform/pdf/internal/merge/Tags.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

/// What documents contribute. One document's parts are joined to the others' when all of them have
/// been copied, so that one that turns out to be damaged leaves nothing behind.
struct Parts {
  std::vector<QPDFObjectHandle> pages;
  NameTree destinations;
  NameTree attachments;
  std::vector<QPDFObjectHandle> headings;
  Tags tags;
  Layers layers;
  std::vector<QPDFObjectHandle> pageLabels;  ///< page index and label in turn
  bool hasPageLabels = false;
  std::string version;
};

void append(std::vector<QPDFObjectHandle>& joined, const std::vector<QPDFObjectHandle>& more) {
  joined.insert(joined.end(), more.begin(), more.end());
}

void append(Parts& joined, const Parts& more) {
  append(joined.pages, more.pages);
  joined.destinations.insert(more.destinations.begin(), more.destinations.end());
  joined.attachments.insert(more.attachments.begin(), more.attachments.end());
  append(joined.headings, more.headings);
  append(joined.tags, more.tags);
  append(joined.layers, more.layers);
  append(joined.pageLabels, more.pageLabels);
  joined.hasPageLabels = joined.hasPageLabels || more.hasPageLabels;
  joined.version = std::max(joined.version, more.version);
}

Error noPages(const QString& path) {
  return {QString::fromUtf16(errorDomain), PDFErrorNoPages,
          u"The document \"%1\" has no pages."_s.arg(path)};
}

QString headingText(const MergeSource& source, QPDF& document) {
  if (!source.title.isEmpty()) return source.title;
  const DocumentAttributes attributes = readInformation(document);
  const auto title = attributes.find(PDFDocumentTitleAttribute);
  const bool named =
      title != attributes.end() && !std::get<QString>(title->second).trimmed().isEmpty();
  return named ? std::get<QString>(title->second) : QFileInfo(source.path).completeBaseName();
}

NameTree attachmentsOf(QPDF& source) {
  QPDFObjectHandle names = source.getRoot().getKey("/Names");
  return names.isDictionary() ? readNameTree(names.getKey("/EmbeddedFiles")) : NameTree();
}

/// Joins documents in the target one by one.
class Joiner {
 public:
  explicit Joiner(QPDF& target)
      : target_(target), tagRoot_(target.makeIndirectObject(QPDFObjectHandle::newDictionary())) {}

  bool isEmpty() const { return joined_.pages.empty(); }
  const std::string& version() const { return joined_.version; }

  MaybeError add(const MergeSource& source, QPDF& document) {
    if (document.getAllPages().empty()) return noPages(source.path);
    return catchingQpdf(PDFErrorUnreadable, u"The document \"%1\" is damaged: "_s.arg(source.path),
                        [&] {
                          const bool isFirst = isEmpty();
                          ObjectCopier copier(target_, pool_);
                          const Parts parts = copyParts(source, document, copier);
                          if (isFirst) copyAttributes(document, copier);
                          copier.finish();
                          append(joined_, parts);
                        });
  }

  void write() {
    for (const QPDFObjectHandle& page : joined_.pages)
      target_.addPage(page, false);
    writeOutline(target_, joined_.headings);
    writeTags(target_, tagRoot_, joined_.tags);
    writeLayers(target_, joined_.layers);
    writeNames();
    if (!joined_.hasPageLabels) return;
    QPDFObjectHandle labels = QPDFObjectHandle::newDictionary();
    labels.replaceKey("/Nums", QPDFObjectHandle::newArray(joined_.pageLabels));
    target_.getRoot().replaceKey("/PageLabels", labels);
  }

 private:
  Parts copyParts(const MergeSource& source, QPDF& document, ObjectCopier& copier) {
    Parts parts;
    parts.version = document.getPDFVersion();
    drawFields(document, copier);
    for (const QPDFObjectHandle& page : document.getAllPages()) {
      parts.pages.push_back(target_.makeIndirectObject(QPDFObjectHandle::newDictionary()));
      copier.map(page, parts.pages.back());
    }
    const DocumentDestinations destinations(document, joined_.destinations,
                                            joined_.headings.size() + 1);
    destinations.rename(copier.renaming());
    DocumentTags tags(document, joined_.tags, tagRoot_, copier);
    parts.headings = {outlineHeading(target_, document, copier, headingText(source, document),
                                     parts.pages.front())};
    copyPages(document, parts.pages, copier);
    parts.destinations = destinations.copy(copier);
    parts.tags = tags.copy(copier);
    parts.layers = copyLayers(document, copier);
    parts.attachments = copyAttachments(document, copier);
    copyPageLabels(document, parts, copier);
    return parts;
  }

  /// Article beads (/B) tie pages to threads of the document, which are left out.
  static void copyPages(QPDF& document, const std::vector<QPDFObjectHandle>& copies,
                        ObjectCopier& copier) {
    const std::vector<QPDFObjectHandle> pages = document.getAllPages();
    for (size_t index = 0; index < pages.size(); ++index) {
      copier.copyEntries(pages[index], copies[index], {"/Parent", "/B"});
    }
  }

  NameTree copyAttachments(QPDF& document, ObjectCopier& copier) const {
    NameTree copies;
    for (const auto& [name, file] : attachmentsOf(document)) {
      std::string freeName = name;
      for (int number = 2; joined_.attachments.count(freeName) + copies.count(freeName) > 0;
           ++number) {
        freeName = name + "-" + std::to_string(number);
      }
      copies.emplace(freeName, copier.copy(file));
    }
    return copies;
  }

  /// Pages before a document's first label, or all when it has none, are numbered from 1, as
  /// readers number them.
  void copyPageLabels(QPDF& document, Parts& parts, ObjectCopier& copier) const {
    const auto start = static_cast<long long>(joined_.pages.size());
    const auto count = static_cast<long long>(parts.pages.size());
    NumberTree labels = readNumberTree(document.getRoot().getKey("/PageLabels"));
    parts.hasPageLabels = !labels.empty();
    QPDFObjectHandle numbered = QPDFObjectHandle::newDictionary();
    numbered.replaceKey("/S", QPDFObjectHandle::newName("/D"));
    labels.try_emplace(0, numbered);
    for (const auto& [index, label] : labels) {
      if (index < 0 || index >= count) continue;
      parts.pageLabels.push_back(QPDFObjectHandle::newInteger(start + index));
      parts.pageLabels.push_back(copier.copy(label));
    }
  }

  void copyAttributes(QPDF& document, ObjectCopier& copier) {
    QPDFObjectHandle root = document.getRoot();
    for (const char* key :
         {"/Metadata", "/Lang", "/ViewerPreferences", "/PageLayout", "/PageMode", "/OpenAction"}) {
      if (root.hasKey(key)) target_.getRoot().replaceKey(key, copier.copy(root.getKey(key)));
    }
    QPDFObjectHandle information = document.getTrailer().getKey("/Info");
    if (!information.isDictionary()) return;
    QPDFObjectHandle copy = target_.makeIndirectObject(QPDFObjectHandle::newDictionary());
    copier.copyEntries(information, copy, {});
    target_.getTrailer().replaceKey("/Info", copy);
  }

  void writeNames() {
    QPDFObjectHandle names = QPDFObjectHandle::newDictionary();
    if (!joined_.destinations.empty())
      names.replaceKey("/Dests", writeNameTree(target_, joined_.destinations));
    if (!joined_.attachments.empty())
      names.replaceKey("/EmbeddedFiles", writeNameTree(target_, joined_.attachments));
    if (!names.getKeys().empty()) target_.getRoot().replaceKey("/Names", names);
  }

  QPDF& target_;
  QPDFObjectHandle tagRoot_;
  ResourcePool pool_;
  Parts joined_;
};

/// Joins what can be read and says what cannot.
std::vector<SkippedSource> joinAll(const std::vector<MergeSource>& sources, Joiner& joiner) {
  QStringList paths;
  for (const MergeSource& source : sources)
    paths += source.path;
  std::vector<SkippedSource> skipped;
  ReadAhead documents(paths);
  std::unique_ptr<QPDF> document;
  for (const MergeSource& source : sources) {
    auto opened = documents.next(std::move(document));
    MaybeError error;
    if (opened) document = std::move(*opened);
    error = opened ? joiner.add(source, *document) : opened.error();
    if (!error) continue;
    logLine(u"Left out while joining documents: "_s + error->localizedDescription);
    skipped.push_back({source.path, *error});
  }
  return skipped;
}

}  // namespace

Result<MergedDocument> mergeDocuments(const std::vector<MergeSource>& sources) {
  auto contents = std::make_shared<PDFDocument::Contents>(std::make_unique<QPDF>());
  contents->qpdf.setSuppressWarnings(true);
  contents->qpdf.emptyPDF();
  Joiner joiner(contents->qpdf);
  MergedDocument merged;
  merged.skipped = joinAll(sources, joiner);
  if (joiner.isEmpty() && !merged.skipped.empty())
    return tl::unexpected(merged.skipped.front().reason);
  if (joiner.isEmpty()) {
    return failure(QString::fromUtf16(errorDomain), PDFErrorNoPages,
                   u"There are no documents to join."_s);
  }
  if (MaybeError error = catchingQpdf(PDFErrorUnreadable, u"The documents cannot be joined: "_s,
                                      [&] { joiner.write(); })) {
    return tl::unexpected(*error);
  }
  contents->leastVersion = joiner.version();
  merged.document = std::make_shared<PDFDocument>(std::move(contents));
  return merged;
}

}  // namespace pdf
