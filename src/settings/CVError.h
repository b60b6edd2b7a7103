#pragma once

#include <QString>
#include <cstdint>
#include <optional>

/// Why a step of an entry failed. `errorType` 0: the page could not be loaded; 1: it could not be
/// converted or delivered. Whether an entry failed is told by its state and the presence of this
/// record.
class CVError {
 public:
  std::int32_t errorType() const { return errorType_; }
  void setErrorType(std::int32_t type) { errorType_ = type; }

  const std::optional<QString>& errorDescription() const { return errorDescription_; }
  void setErrorDescription(std::optional<QString> description);

 private:
  std::int32_t errorType_ = 0;
  std::optional<QString> errorDescription_;
};
