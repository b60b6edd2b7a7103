#pragma once

#include "intake/CVRedirectHandler.h"

/// Offers incoming addresses to the program's Dropbox account.
class DropboxRedirects : public CVRedirectHandler {
 public:
  void setupDropBox() override;
  bool handleRedirectURL(const QUrl& url, Completion completion) override;
};
