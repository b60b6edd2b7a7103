#pragma once

#include <memory>

#include "platform/printing/PrintableView.h"

namespace web {
class Page;
}

/// The whole document of a loaded page as something that can be printed: in pages by the engine, so
/// text stays text. Flipped, as documents on the screen are.
class CVWebDocumentView : public printing::PrintableView {
 public:
  explicit CVWebDocumentView(std::shared_ptr<web::Page> page);

  QRectF frame() const override;
  bool isFlipped() const override { return true; }
  void printTo(const printing::PrintInfo& info, const QString& path,
               std::function<void(MaybeError)> completion) override;

 private:
  std::shared_ptr<web::Page> page_;
};
