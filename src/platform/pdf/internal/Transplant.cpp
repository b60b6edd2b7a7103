#include "platform/pdf/internal/Transplant.h"

namespace pdf {

std::string Transplant::copy(const Value& value) {
  std::string text;
  append(text, value);
  return text;
}

void Transplant::finish() {
  for (; !pending_.empty(); pending_.pop_front()) {
    const int object = pending_.front(), copied = copies_[object];
    const auto data = source_.data(object);
    if (!data) {
      update_.writeObject(copied, copy(source_.object(object)));
      continue;
    }
    std::string entries = "<<";
    appendEntries(entries, source_.object(object), {"/Length"});
    update_.writeStream(copied, entries + ">>", *data);
  }
}

void Transplant::appendReference(std::string& text, int object) {
  int& copied = copies_[object];
  if (copied == 0) {
    copied = update_.reserve();
    pending_.push_back(object);
  }
  appendWord(text, referenceText(copied));
}

}  // namespace pdf
