#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/pdf/internal/merge/Value.h"

namespace pdf {

/// Keeps words apart that would be read as one.
void appendWord(std::string& text, std::string_view word);

/// The value as it is, its references too.
void appendValue(std::string& text, const Value& value);

/// The entries of a dictionary, without its brackets. `except` stay behind.
void appendEntries(std::string& text, const Value& dictionary,
                   std::initializer_list<std::string_view> except);

}  // namespace pdf
