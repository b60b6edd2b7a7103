#include "platform/rendering/SettledStyles.h"

#include <QJsonObject>
#include <algorithm>

#include "platform/rendering/PageScript.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

QStringList stringsOf(const QJsonValue& list) {
  QStringList strings;
  for (const QJsonValue& value : list.toArray())
    strings.append(value.toString());
  return strings;
}

/// Calls `then` when it is dropped by the last of those who were given it.
using AllDone = std::shared_ptr<void>;

AllDone whenAllDone(std::function<void()> then) {
  return {nullptr, [then = std::move(then)](void*) { then(); }};
}

/// Sheets that import sheets that import sheets.
constexpr int mostRounds = 4;
constexpr auto importLimit = 3s;
constexpr auto pollInterval = 10ms;

const auto changedWithImports = [](const auto& sheet) {
  return sheet.settled && sheet.text.contains(u"@import", Qt::CaseInsensitive);
};

}  // namespace

void SettledStyles::settle(const std::shared_ptr<web::Page>& page, const ScreenViewport& viewport,
                           Settled callback) {
  std::shared_ptr<SettledStyles> styles(new SettledStyles(page, viewport));
  styles->callback_ = std::move(callback);
  styles->start();
}

/// The engine lists all sheets that there are before it answers that the domain is enabled.
void SettledStyles::start() {
  follow();
  page_->send(u"DOM.enable"_s);
  page_->send(u"CSS.enable"_s, {}, [self = shared_from_this()](const Result<QJsonObject>& reply) {
    self->liveAtFirst_ = self->live_.size();
    reply ? self->readInlineStyles() : self->finish(reply.error());
  });
}

void SettledStyles::follow() {
  subscriptions_.push_back(page_->addEventHandler(
      u"CSS.styleSheetAdded"_s, [weak = weak_from_this()](const QJsonObject& parameters) {
        if (const auto self = weak.lock())
          self->noteSheet(parameters.value("header"_L1).toObject());
      }));
  subscriptions_.push_back(page_->addEventHandler(
      u"CSS.styleSheetRemoved"_s, [weak = weak_from_this()](const QJsonObject& parameters) {
        if (const auto self = weak.lock())
          self->live_.remove(parameters.value("styleSheetId"_L1).toString());
      }));
}

void SettledStyles::noteSheet(const QJsonObject& header) {
  const bool ofPage = header.value("origin"_L1).toString() == u"regular" &&
                      header.value("frameId"_L1).toString() == page_->targetIdentifier();
  // The viewport of a frame is the frame itself, which keeps its size in print.
  if (!ofPage) return;
  sheets_.push_back({header.value("styleSheetId"_L1).toString(), {}, {}});
  live_.insert(sheets_.back().identifier);
}

void SettledStyles::readInlineStyles() {
  callPageScript(page_, u"inlineStyles"_s, {},
                 [self = shared_from_this()](Result<QJsonValue> value) {
                   if (!value) return self->finish(value.error());
                   const QJsonObject styles = value->toObject();
                   self->inlineStyles_ = stringsOf(styles.value("styles"_L1));
                   self->media_ = stringsOf(styles.value("media"_L1));
                   self->readSheets();
                 });
}

void SettledStyles::readSheets() {
  const AllDone done = whenAllDone([self = shared_from_this()] { self->askConditions(); });
  for (size_t index = firstUnsettled_; index < sheets_.size(); ++index) {
    page_->send(u"CSS.getStyleSheetText"_s, {{"styleSheetId"_L1, sheets_[index].identifier}},
                [self = shared_from_this(), done, index](const Result<QJsonObject>& reply) {
                  // A sheet that went away meanwhile has nothing to settle.
                  if (reply) self->sheets_[index].text = reply->value("text"_L1).toString();
                });
  }
}

void SettledStyles::askConditions() {
  for (const Sheet& sheet : sheets_)
    conditions_ += viewportConditions(sheet.text, viewport_.change);
  for (const QString& media : media_) {
    conditions_ += viewportConditions(u"@media "_s + media + u'{', viewport_.change);
  }
  conditions_.removeDuplicates();
  if (conditions_.isEmpty()) return change({});
  // Not in braces: those would copy the inner list instead of wrapping it.
  QJsonArray arguments;
  arguments.append(QJsonArray::fromStringList(conditions_));
  callPageScript(page_, u"mediaMatches"_s, arguments,
                 [self = shared_from_this()](Result<QJsonValue> value) {
                   value ? self->change(value->toArray()) : self->finish(value.error());
                 });
}

void SettledStyles::change(const QJsonArray& answers) {
  for (qsizetype index = 0; index < conditions_.size(); ++index) {
    viewport_.conditions.insert(conditions_[index], answers.at(index).toBool());
  }
  changeSheets();
}

void SettledStyles::changeSheets() {
  const AllDone done = whenAllDone([self = shared_from_this()] { self->afterSheets(); });
  for (size_t index = firstUnsettled_; index < sheets_.size(); ++index) {
    Sheet& sheet = sheets_[index];
    sheet.settled = settledStyleSheet(sheet.text, viewport_);
    // Of a sheet that was fetched again the engine still gives the changed text, by its address,
    // though its rules are the old ones.
    const bool fetchedAgain = rounds_ > 0 && !knownBefore(index);
    if (fetchedAgain && !sheet.settled) sheet.settled = sheet.text;
    if (sheet.settled) setText(sheet, *sheet.settled, [done] {});
  }
}

bool SettledStyles::knownBefore(size_t index) const {
  const auto end = sheets_.begin() + qptrdiff(index);
  return std::any_of(sheets_.begin(), end, [&](const Sheet& sheet) {
    return sheet.identifier == sheets_[index].identifier;
  });
}

/// A sheet that is changed fetches what it imports anew: new sheets, to be settled in their turn.
void SettledStyles::afterSheets() {
  const auto begin = sheets_.begin() + qptrdiff(firstUnsettled_);
  const bool imports = std::any_of(begin, sheets_.end(), changedWithImports);
  if (!imports || ++rounds_ > mostRounds) return changeInlineStyles();
  firstUnsettled_ = sheets_.size();
  waitForImports([self = shared_from_this()] { self->readSheets(); });
}

void SettledStyles::waitForImports(std::function<void()> then) {
  checkImports(QDeadlineTimer(importLimit), std::move(then));
}

/// The engine reports sheets that come and go when it lays the page out: measuring makes it do so.
void SettledStyles::checkImports(QDeadlineTimer deadline, std::function<void()> then) {
  callPageScript(page_, u"size"_s, {},
                 [self = shared_from_this(), deadline, then = std::move(then)](const auto& size) {
                   // The timer holds this object.
                   self->poll_.reset();
                   const bool complete = self->live_.size() >= self->liveAtFirst_;
                   if (complete || !size || deadline.hasExpired()) return then();
                   self->poll_ = dispatch::Timer::after(pollInterval, [self, deadline, then] {
                     self->checkImports(deadline, then);
                   });
                 });
}

void SettledStyles::setText(const Sheet& sheet, const QString& text, std::function<void()> then) {
  page_->send(u"CSS.setStyleSheetText"_s,
              {{"styleSheetId"_L1, sheet.identifier}, {"text"_L1, text}},
              [then = std::move(then)](const auto&) { then(); });
}

void SettledStyles::changeInlineStyles() {
  QJsonArray styles;
  QJsonArray media;
  const auto value = [](const std::optional<QString>& text) {
    return text ? QJsonValue(*text) : QJsonValue();
  };
  for (const QString& text : inlineStyles_)
    styles.append(value(settledDeclarations(text, viewport_)));
  for (const QString& text : media_)
    media.append(value(settledMedia(text, viewport_)));
  callPageScript(page_, u"setInlineStyles"_s, {styles, media},
                 [self = shared_from_this()](const Result<QJsonValue>& done) {
                   self->finish(done ? MaybeError() : done.error());
                 });
}

void SettledStyles::finish(MaybeError error) {
  const Settled callback = std::move(callback_);
  if (!error) return callback(shared_from_this());
  restore([callback, error] { callback(tl::unexpected(*error)); });
}

void SettledStyles::restore(std::function<void()> then) {
  auto disable = [self = shared_from_this(), then = std::move(then)] {
    self->subscriptions_.clear();
    self->page_->send(u"CSS.disable"_s);
    self->page_->send(u"DOM.disable"_s, {}, [then](const auto&) { then(); });
  };
  const bool imports = std::any_of(sheets_.begin(), sheets_.end(), changedWithImports);
  const AllDone done = whenAllDone([self = shared_from_this(), imports, disable] {
    imports ? self->waitForImports(disable) : disable();
  });
  for (const Sheet& sheet : sheets_) {
    if (sheet.settled && live_.contains(sheet.identifier)) setText(sheet, sheet.text, [done] {});
  }
}

}  // namespace rendering
