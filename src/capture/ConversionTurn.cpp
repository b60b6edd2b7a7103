#include "capture/ConversionTurn.h"

#include "capture/CVPageView.h"
#include "capture/CVPrintImageView.h"

CVURLEntry::ConversionTurn::ConversionTurn(CVURLEntry& entry, std::shared_ptr<web::Page> page)
    : entry_(entry), lock_(entry.conversionMutex_) {
  std::lock_guard lock(entry_.resultMutex_);
  entry_.convertedPage_ = std::move(page);
}

CVURLEntry::ConversionTurn::~ConversionTurn() {
  // They hold the page, which may be out of use by now.
  entry_.pageView_.reset();
  entry_.printImageView_.reset();
  std::lock_guard lock(entry_.resultMutex_);
  entry_.convertedPage_.reset();
}
