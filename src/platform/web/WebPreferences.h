#pragma once

namespace web {

/// What a view's owner asks of it. Scripts are decided when the page is made, by PageConfiguration,
/// and the engine has neither plug-ins nor Java and always prints backgrounds; the record keeps
/// what was asked.
struct WebPreferences {
  bool allowsAnimatedImages = true;
  bool allowsAnimatedImageLooping = true;
  bool plugInsEnabled = false;
  bool javaEnabled = false;
  bool javaScriptCanOpenWindowsAutomatically = false;
  bool javaScriptEnabled = true;
  bool shouldPrintBackgrounds = true;
  bool loadsImagesAutomatically = true;

  friend bool operator==(const WebPreferences&, const WebPreferences&) = default;
};

/// The same for a WKWebView.
struct WKPreferences {
  bool javaScriptEnabled = true;
  bool javaScriptCanOpenWindowsAutomatically = false;
  bool javaEnabled = false;
  bool plugInsEnabled = false;

  friend bool operator==(const WKPreferences&, const WKPreferences&) = default;
};

}  // namespace web
