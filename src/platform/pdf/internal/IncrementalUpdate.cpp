#include "platform/pdf/internal/IncrementalUpdate.h"

#include "platform/imaging/PartFile.h"
#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/merge/MendedCopy.h"
#include "platform/pdf/internal/merge/ValueText.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

std::unique_ptr<SourceFile> openPlain(const QString& path) {
  try {
    auto document = std::make_unique<SourceFile>(path);
    const bool hasTable = document->trailer()["/Type"].isNull();
    return hasTable && !document->pages().empty() ? std::move(document) : nullptr;
  } catch (const std::exception&) {
    // Mending finds out what is wrong.
    return nullptr;
  }
}

/// An entry of a cross-reference table takes 20 bytes (ISO 32000-1, 7.5.4).
std::string tableEntry(size_t position) {
  std::string digits = std::to_string(position);
  digits.insert(0, 10 - std::min<size_t>(10, digits.size()), '0');
  return digits + " 00000 n \n";
}

}  // namespace

Result<std::unique_ptr<SourceFile>> openForUpdate(const QString& path) {
  if (auto document = openPlain(path)) return document;
  const auto copy = mendedCopy(path);
  if (!copy) return tl::unexpected(copy.error());
  if (auto document = openPlain((*copy)->fileName())) return document;
  return failure(QString::fromUtf16(errorDomain), PDFErrorUnreadable,
                 u"The document \"%1\" is damaged."_s.arg(path));
}

IncrementalUpdate::IncrementalUpdate(const SourceFile& source)
    : source_(source), nextObject_(source.objectCount()), added_("\n") {}

void IncrementalUpdate::begin(int object) {
  positions_[object] = source_.bytes().size() + added_.size();
  added_ += std::to_string(object) + " 0 obj\n";
}

void IncrementalUpdate::writeObject(int object, std::string_view text) {
  begin(object);
  added_ += text;
  added_ += "\nendobj\n";
}

void IncrementalUpdate::writeStream(int object, std::string_view dictionary,
                                    std::string_view data) {
  begin(object);
  added_ += dictionary.substr(0, dictionary.size() - 2);
  added_ += "/Length " + std::to_string(data.size()) + ">>\nstream\n";
  added_ += data;
  added_ += "\nendstream\nendobj\n";
}

void IncrementalUpdate::raiseVersion(const std::string& version) {
  const int catalog = source_.trailer()["/Root"].reference;
  if (source_.version() >= version || catalog == 0) return;
  std::string text = "<<";
  ValueText().appendEntries(text, source_.root(), {"/Version"});
  writeObject(catalog, text + "/Version/" + version + ">>");
}

void IncrementalUpdate::appendCrossReferences() {
  added_ += "xref\n";
  for (auto run = positions_.begin(); run != positions_.end();) {
    std::string entries;
    auto next = run;
    int count = 0;
    for (; next != positions_.end() && next->first == run->first + count; ++next, ++count)
      entries += tableEntry(next->second);
    added_ += std::to_string(run->first) + ' ' + std::to_string(count) + '\n' + entries;
    run = next;
  }
}

void IncrementalUpdate::appendTrailer(size_t start) {
  added_ += "trailer\n<<";
  ValueText().appendEntries(added_, source_.trailer(), {"/Size", "/Prev"});
  added_ += "/Size " + std::to_string(nextObject_) + "/Prev " +
            std::to_string(source_.crossReferencesStart()) + ">>\nstartxref\n" +
            std::to_string(start) + "\n%%EOF\n";
}

MaybeError IncrementalUpdate::write(const QString& target) {
  if (positions_.empty()) return writeTo(target, {});
  const size_t start = source_.bytes().size() + added_.size();
  appendCrossReferences();
  appendTrailer(start);
  return writeTo(target, added_);
}

MaybeError IncrementalUpdate::writeTo(const QString& target, std::string_view added) const {
  const auto file = imaging::PartFile::create(target);
  MaybeError error = file ? MaybeError() : file.error();
  if (!error) error = (*file)->write(source_.bytes());
  if (!error) error = (*file)->write(added);
  if (!error) error = (*file)->commit();
  if (!error) return std::nullopt;
  return Error{QString::fromUtf16(errorDomain), PDFErrorWrite, error->localizedDescription};
}

}  // namespace pdf
