#include "platform/pdf/internal/BlankPage.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/pdf/internal/merge/Deflate.h"

namespace pdf {
namespace {

/// Packed bytes; what a page without text and pictures needs is a tenth of it.
constexpr size_t longestContents = 2048;
constexpr size_t longestUnpacked = 64 * longestContents;

/// Operators that draw nothing (ISO 32000-1, Annex A).
constexpr std::string_view silent[] = {"cm", "re", "m", "l",  "c",  "v",  "y",  "h",
                                       "W",  "W*", "n", "gs", "RG", "G",  "K",  "w",
                                       "J",  "j",  "M", "i",  "ri", "CS", "SC", "SCN"};

/// Follows the operators of a page as far as it takes to know whether white is all that they fill.
class Contents {
 public:
  bool isBlank(std::string_view text) {
    if (text.find_first_of("([<{%") != std::string_view::npos) return false;
    while (const auto word = nextWord(text)) {
      if (word->front() == '/' || isNumber(*word)) {
        operands_.push_back(*word);
        continue;
      }
      if (!staysBlank(*word)) return false;
      operands_.clear();
    }
    return true;
  }

 private:
  static std::optional<std::string_view> nextWord(std::string_view& text) {
    const auto begin = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto end = std::find_if(begin, text.end(), isSpace);
    const auto word =
        text.substr(static_cast<size_t>(begin - text.begin()), static_cast<size_t>(end - begin));
    text.remove_prefix(static_cast<size_t>(end - text.begin()));
    return word.empty() ? std::nullopt : std::optional(word);
  }

  static bool isNumber(std::string_view word) {
    return word.find_first_not_of("+-.0123456789") == std::string_view::npos;
  }

  bool allOnes() const {
    return std::all_of(operands_.begin(), operands_.end(),
                       [](std::string_view operand) { return operand == "1"; });
  }

  bool staysBlank(std::string_view name) {
    if (name == "q") {
      saved_.push_back(fillsWhite_);
    } else if (name == "Q") {
      if (saved_.empty()) return false;
      fillsWhite_ = saved_.back();
      saved_.pop_back();
    } else if (name == "rg" || name == "g") {
      fillsWhite_ = allOnes();
    } else if (name == "f" || name == "f*") {
      return fillsWhite_;
    } else {
      return std::find(std::begin(silent), std::end(silent), name) != std::end(silent);
    }
    return true;
  }

  std::vector<std::string_view> operands_;
  std::vector<bool> saved_;
  bool fillsWhite_ = false;
};

std::optional<std::string> unpacked(const SourceFile& document, const Value& contents) {
  const auto data = document.data(contents.reference);
  if (!data || data->size() > longestContents) return std::nullopt;
  const Value& filter = document.resolved(document.object(contents.reference)["/Filter"]);
  if (filter.isNull()) return std::string(*data);
  if (!filter.isName("/FlateDecode")) return std::nullopt;
  try {
    return inflated(*data, longestUnpacked);
  } catch (const UnsoundFile&) {
    return std::nullopt;
  }
}

}  // namespace

bool isBlank(const SourceFile& document, const SourcePage& page) {
  const Value& annotations = document.resolved(document.pageEntry(page, "/Annots"));
  const Value& contents = document.pageEntry(page, "/Contents");
  if (annotations.count > 0) return false;
  if (contents.isNull()) return true;
  const auto text = unpacked(document, contents);
  return text && Contents().isBlank(*text);
}

}  // namespace pdf
