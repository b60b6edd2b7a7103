#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/pdf/internal/merge/Value.h"

namespace pdf {

/// Keeps words apart that would be read as one.
void appendWord(std::string& text, std::string_view word);

/// Spells values as they are; who copies them elsewhere spells what refers to others anew.
class ValueText {
 public:
  virtual ~ValueText() = default;

  void append(std::string& text, const Value& value);

  /// The entries of a dictionary, without its brackets. `except` stay behind.
  virtual void appendEntries(std::string& text, const Value& dictionary,
                             std::initializer_list<std::string_view> except);

 protected:
  virtual void appendReference(std::string& text, int object);
};

}  // namespace pdf
