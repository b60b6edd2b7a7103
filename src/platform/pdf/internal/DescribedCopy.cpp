#include "platform/pdf/internal/DescribedCopy.h"

#include <memory>

#include "platform/pdf/internal/Information.h"
#include "platform/pdf/internal/merge/CompactFile.h"
#include "platform/pdf/internal/merge/SourceFile.h"
#include "platform/pdf/internal/merge/ValueText.h"

namespace pdf {
namespace {

std::unique_ptr<SourceFile> openSound(const QString& path) {
  try {
    return std::make_unique<SourceFile>(path);
  } catch (const std::exception&) {
    return nullptr;
  }
}

/// Copies every object under its own number, but for what the attributes replace and what only
/// serves the old file's form.
class Copy {
 public:
  Copy(const SourceFile& source, const QString& target) : source_(source), file_(target) {
    for (int number = 1; number < source.objectCount(); ++number)
      file_.reserve();
  }

  MaybeError make(const DocumentAttributes& attributes) {
    for (int number = 1; number < source_.objectCount(); ++number) {
      if (!isLeftBehind(number)) copyObject(number);
    }
    const int packet = file_.reserve();
    file_.writeStream(packet, "<</Type/Metadata/Subtype/XML>>",
                      xmpPacket(attributes).toStdString());
    std::string catalog = "<<";
    spelling_.appendEntries(catalog, source_.root(), {"/Metadata"});
    const int root = file_.add(catalog + "/Metadata " + referenceText(packet) + ">>");
    const int information = file_.add(informationText(attributes));
    return file_.finish(source_.version(),
                        "/Root " + referenceText(root) + "/Info " + referenceText(information));
  }

 private:
  bool isLeftBehind(int number) const {
    const Value& value = source_.object(number);
    const Value& type = value["/Type"];
    const bool isForm = type.isName("/XRef") || type.isName("/ObjStm");
    const bool isReplaced = number == source_.trailer()["/Info"].reference ||
                            number == source_.trailer()["/Root"].reference ||
                            number == source_.root()["/Metadata"].reference;
    return value.isNull() || isForm || isReplaced;
  }

  void copyObject(int number) {
    const Value& value = source_.object(number);
    std::string text;
    const auto data = source_.data(number);
    if (!data) {
      spelling_.append(text, value);
      return file_.writeObject(number, text);
    }
    text = "<<";
    spelling_.appendEntries(text, value, {"/Length"});
    file_.writeStream(number, text + ">>", *data);
  }

  const SourceFile& source_;
  CompactFile file_;
  ValueText spelling_;
};

}  // namespace

Result<DescribedCopy> makeDescribedCopy(const QString& source, const QString& target,
                                        const DocumentAttributes& attributes) {
  const auto document = openSound(source);
  if (!document) return DescribedCopy::NotPossible;
  if (const MaybeError error = Copy(*document, target).make(attributes))
    return tl::unexpected(*error);
  return DescribedCopy::Made;
}

}  // namespace pdf
