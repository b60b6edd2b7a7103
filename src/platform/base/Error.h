#pragma once

#include <QString>
#include <optional>
#include <tl/expected.hpp>

/// What went wrong, made where the cause is known. `localizedDescription` is one sentence that a
/// user can act on; domain and code let the program tell causes apart.
struct Error {
  QString domain;
  int code = 0;
  QString localizedDescription;

  friend bool operator==(const Error&, const Error&) = default;
};

using MaybeError = std::optional<Error>;

/// A value, or the reason why there is none.
template <class Value>
using Result = tl::expected<Value, Error>;

inline tl::unexpected<Error> failure(QString domain, int code, QString description) {
  return tl::unexpected<Error>(Error{std::move(domain), code, std::move(description)});
}
