#pragma once

#include <deque>
#include <map>
#include <string>

#include "platform/pdf/internal/IncrementalUpdate.h"
#include "platform/pdf/internal/merge/SourceFile.h"
#include "platform/pdf/internal/merge/ValueText.h"

namespace pdf {

/// Takes objects of one document over into an update of another, with all that they refer to, each
/// once.
class Transplant : public ValueText {
 public:
  Transplant(const SourceFile& source, IncrementalUpdate& update)
      : source_(source), update_(update) {}

  /// The value's text there. `finish` writes what it refers to.
  std::string copy(const Value& value);
  void finish();

 protected:
  void appendReference(std::string& text, int object) override;

 private:
  const SourceFile& source_;
  IncrementalUpdate& update_;
  std::map<int, int> copies_;
  std::deque<int> pending_;
};

}  // namespace pdf
