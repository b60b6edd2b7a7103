#include "ui/minibrowser/PageReader.h"

#include <chrono>

#include "platform/browsers/PagePrograms.h"
#include "platform/rendering/DocumentSize.h"
#include "platform/web/WebView.h"

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds answerTimeout{10};

/// Markup holds what a form began with. What the user has made of it is copied there, where the
/// values themselves do not change by it (HTML Standard, 4.10.18.1: the dirty value flag).
QString keepFormsProgram() {
  return uR"((() => {
    const flag = (element, name, on) =>
        on ? element.setAttribute(name, '') : element.removeAttribute(name);
    const unseen = ['password', 'file', 'hidden', 'submit', 'button', 'reset', 'image'];
    const keep = root => {
      for (const field of root.querySelectorAll('input')) {
        if (field.type === 'checkbox' || field.type === 'radio') {
          if (field.checked !== field.defaultChecked) flag(field, 'checked', field.checked);
        } else if (!unseen.includes(field.type) && field.value !== field.defaultValue)
          field.setAttribute('value', field.value);
      }
      for (const field of root.querySelectorAll('textarea'))
        if (field.value !== field.defaultValue) field.defaultValue = field.value;
      for (const option of root.querySelectorAll('option'))
        if (option.selected !== option.defaultSelected) flag(option, 'selected', option.selected);
      for (const frame of root.querySelectorAll('iframe')) {
        try { if (frame.contentDocument) keep(frame.contentDocument); } catch (error) {}
      }
    };
    keep(document);
  })())"_s;
}

/// One reading: the programs run one after the other, so that they see one state.
class Reading : public std::enable_shared_from_this<Reading> {
 public:
  Reading(std::shared_ptr<web::WebView> view, std::function<void(PageContents)> callback)
      : view_(std::move(view)), callback_(std::move(callback)) {}

  void begin() {
    view_->page()->evaluate(
        keepFormsProgram(), [self = shared_from_this()](const auto&) { self->readMarkup(); },
        answerTimeout);
  }

 private:
  void readMarkup() { run(browsers::documentProgram(), contents_.markup, &Reading::readStyles); }
  void readStyles() { run(browsers::stylesProgram(), contents_.styles, &Reading::readFrames); }
  void readFrames() { run(browsers::framesProgram(), contents_.frames, &Reading::readSize); }

  void readSize() {
    rendering::documentSize(view_->page(), [self = shared_from_this()](const auto& size) {
      self->contents_.size = size.value_or(self->view_->frame().size());
      self->callback_(std::move(self->contents_));
    });
  }

  void run(const QString& program, std::optional<QString>& part, void (Reading::*next)()) {
    view_->page()->evaluate(
        program,
        [self = shared_from_this(), &part, next](const Result<QJsonValue>& value) {
          if (value && value->isString()) part = value->toString();
          (self.get()->*next)();
        },
        answerTimeout);
  }

  const std::shared_ptr<web::WebView> view_;
  const std::function<void(PageContents)> callback_;
  PageContents contents_;
};

}  // namespace

void readPage(const std::shared_ptr<web::WebView>& view,
              std::function<void(PageContents)> callback) {
  std::make_shared<Reading>(view, std::move(callback))->begin();
}
