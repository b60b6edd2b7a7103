#pragma once

#include <string>
#include <string_view>

namespace pdf {

/// The zlib stream of `bytes`.
std::string deflated(std::string_view bytes);

/// What a zlib stream holds. Throws `UnsoundFile` when it is damaged or holds more than `most`
/// bytes.
std::string inflated(std::string_view bytes, size_t most);

}  // namespace pdf
