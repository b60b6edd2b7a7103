#include "platform/pdf/internal/merge/Joiner.h"

#include <algorithm>

#include "platform/pdf/internal/QpdfText.h"

namespace pdf {
namespace {

QString headingText(const SourceFile& document, const QString& title, const QString& otherwise) {
  if (!title.isEmpty()) return title;
  const Value& own = document.resolved(document.resolved(document.trailer()["/Info"])["/Title"]);
  const QString text = textOf(QPDFObjectHandle::newString(own.bytes())).value_or(QString());
  return text.trimmed().isEmpty() ? otherwise : text;
}

}  // namespace

Joiner::Joiner(const QString& path)
    : file_(path), pool_(file_), pageTree_(file_.reserve()), tagRoot_(file_.reserve()) {}

void Joiner::add(const SourceFile& document, const QString& title, const QString& otherwise) {
  ObjectCopier copier(document, file_, pool_);
  const size_t firstPage = pages_.size(), number = headings_.size() + 1;
  reservePages(document, copier);
  const DocumentDestinations destinations(document, destinations_, number);
  destinations.rename(copier.renaming());
  const DocumentTags tags(document, tags_, tagRoot_, number, copier);
  const std::string heading = textObject(headingText(document, title, otherwise)).unparse();
  headings_.push_back(outlineHeading(file_, document, copier, heading, pages_[firstPage]));
  copyPages(document, firstPage, copier);
  destinations.copy(copier, destinations_);
  tags.copy(copier, tags_);
  copyLayers(document, copier, layers_);
  copyAttachments(document, copier);
  copyPageLabels(document, firstPage, copier);
  if (firstPage == 0) copyAttributes(document, copier);
  copier.finish();
  version_ = std::max(version_, document.version());
}

void Joiner::reservePages(const SourceFile& document, ObjectCopier& copier) {
  for (const SourcePage& page : document.pages()) {
    pages_.push_back(file_.reserve());
    copier.map(page.number, pages_.back());
  }
}

/// Article beads (/B) tie pages to threads of the document, which are left out.
void Joiner::copyPages(const SourceFile& document, size_t firstPage, ObjectCopier& copier) {
  for (size_t index = 0; index < document.pages().size(); ++index) {
    const SourcePage& page = document.pages()[index];
    std::string text = "<<" + copier.copyEntries(document.object(page.number), {"/Parent", "/B"});
    for (size_t entry = 0; entry < page.inherited.size(); entry += 2) {
      text += page.inherited[entry].text;
      text += ' ' + copier.copy(page.inherited[entry + 1]);
    }
    file_.writeObject(pages_[firstPage + index],
                      text + "/Parent " + referenceText(pageTree_) + ">>");
  }
}

void Joiner::copyAttachments(const SourceFile& document, ObjectCopier& copier) {
  for (const auto& [name, file] :
       readNameTree(document, document.rootEntry("/Names")["/EmbeddedFiles"]))
    attachments_.emplace(freeName(name, 2, attachments_, {}), copier.copy(file));
}

/// Pages before a document's first label, or all when it has none, are numbered from 1, as
/// readers number them.
void Joiner::copyPageLabels(const SourceFile& document, size_t firstPage, ObjectCopier& copier) {
  const NumberTree labels = readNumberTree(document, document.root()["/PageLabels"]);
  hasPageLabels_ = hasPageLabels_ || !labels.empty();
  const auto start = static_cast<long long>(firstPage);
  if (labels.count(0) == 0) pageLabels_ += std::to_string(start) + "<</S/D>>";
  for (const auto& [index, label] : labels) {
    if (index < 0 || index >= static_cast<long long>(document.pages().size())) continue;
    pageLabels_ += std::to_string(start + index) + ' ' + copier.copy(label) + ' ';
  }
}

void Joiner::copyAttributes(const SourceFile& document, ObjectCopier& copier) {
  for (const char* key :
       {"/Metadata", "/Lang", "/ViewerPreferences", "/PageLayout", "/PageMode", "/OpenAction"}) {
    const Value& value = document.root()[key];
    const bool isScript = document.resolved(value)["/S"].isName("/JavaScript");
    if (!document.resolved(value).isNull() && !isScript)
      attributes_ += std::string(key) + ' ' + copier.copy(value);
  }
  const Value& information = document.resolved(document.trailer()["/Info"]);
  if (information.isDictionary()) information_ = file_.add(copier.copy(information));
}

void Joiner::writePageTree() {
  std::string kids;
  for (const int page : pages_)
    kids += referenceText(page) + ' ';
  file_.writeObject(
      pageTree_, "<</Type/Pages/Count " + std::to_string(pages_.size()) + "/Kids[" + kids + "]>>");
}

std::string Joiner::namesEntry() {
  std::string names;
  if (!destinations_.empty())
    names += "/Dests " + referenceText(writeNameTree(file_, destinations_));
  if (!attachments_.empty())
    names += "/EmbeddedFiles " + referenceText(writeNameTree(file_, attachments_));
  return names.empty() ? names : "/Names<<" + names + ">>";
}

std::string Joiner::catalog() {
  std::string text = "<</Type/Catalog/Pages " + referenceText(pageTree_) + "/Outlines " +
                     referenceText(writeOutline(file_, headings_)) + attributes_ +
                     writeTags(file_, tagRoot_, tags_) + namesEntry();
  const std::string layers = layerProperties(layers_);
  if (!layers.empty()) text += "/OCProperties" + layers;
  if (hasPageLabels_) text += "/PageLabels<</Nums[" + pageLabels_ + "]>>";
  return text + ">>";
}

MaybeError Joiner::finish() {
  std::string trailer;
  if (!hasFailed()) {
    writePageTree();
    trailer = "/Root " + referenceText(file_.add(catalog()));
    if (information_ != 0) trailer += "/Info " + referenceText(information_);
  }
  return file_.finish(version_, trailer);
}

}  // namespace pdf
