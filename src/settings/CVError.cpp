#include "settings/CVError.h"

void CVError::setErrorDescription(std::optional<QString> description) {
  errorDescription_ = std::move(description);
}
