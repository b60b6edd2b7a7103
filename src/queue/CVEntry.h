#pragma once

#include <QString>
#include <QUrl>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/base/Error.h"
#include "platform/imaging/Image.h"
#include "queue/CVEntryDelegate.h"
#include "settings/CVError.h"

/// One captured page in the queue: where it came from, what it is called, how far it has got, and
/// whether it failed. Held by `std::shared_ptr`; identity, not equality, tells entries apart.
///
/// Each field is read and written under the entry's own lock; no lock is held while the observer is
/// told.
class CVEntry : public std::enable_shared_from_this<CVEntry> {
 public:
  /// Called once when a step ends, with the entry and its error, on any thread.
  using Completion =
      std::function<void(const std::shared_ptr<CVEntry>& entry, const MaybeError& error)>;

  explicit CVEntry(QUrl url, std::optional<QString> source = std::nullopt);
  virtual ~CVEntry();
  CVEntry(const CVEntry&) = delete;
  CVEntry& operator=(const CVEntry&) = delete;

  /// Loads the page. The base version does nothing and never calls back.
  virtual void prepareWithCompletion(Completion completion);

  /// Converts and delivers the page. The base version does nothing and never calls back.
  virtual void processWithCompletion(Completion completion);

  /// The place of a PDF file of the page for a multipage document, in mode "Vector" or "Image";
  /// none when there is no such mode. After a failure, with `error` set, the place is returned all
  /// the same, and what is there, if anything, need not be a document: joining passes over it.
  /// Blocks: not on the main thread.
  virtual std::optional<QUrl> createTemporaryPDFWithConversionMode(const QString& mode,
                                                                   MaybeError& error);

  /// Opens the page in the mini browser for adjustment.
  virtual void displayAdjustmentWindow();

  virtual bool canBeRevealed() const;
  virtual void reveal();

  QUrl initialURL() const { return read(initialURL_); }

  CVEntryState state() const { return read(state_); }
  void setState(CVEntryState state);

  std::optional<QUrl> currentURL() const { return read(currentURL_); }
  void setCurrentURL(std::optional<QUrl> url);

  /// A thumbnail of 128 x 92 points; the picture passed in is scaled and not kept.
  std::shared_ptr<const imaging::Image> representativeImage() const {
    return read(representativeImage_);
  }
  void setRepresentativeImage(const std::shared_ptr<const imaging::Image>& image);

  /// The page's title without slashes and double quotes; the base of the file's name.
  std::optional<QString> title() const { return read(title_); }
  void setTitle(std::optional<QString> title);

  /// Progress of the current step: 0 to 1 while loading, -1 while processing.
  double completionFactor() const { return read(completionFactor_); }
  void setCompletionFactor(double factor);

  std::shared_ptr<CVError> error() const { return read(error_); }
  void setError(std::shared_ptr<CVError> error);

  std::shared_ptr<CVEntryDelegate> delegate() const { return read(delegate_).lock(); }
  void setDelegate(std::weak_ptr<CVEntryDelegate> delegate);

 protected:
  std::optional<QString> source() const { return read(source_); }
  void setSource(std::optional<QString> source) { store(source_, std::move(source)); }
  void setInitialURL(QUrl url) { store(initialURL_, std::move(url)); }

 private:
  template <class Value>
  Value read(const Value& field) const {
    std::lock_guard lock(mutex_);
    return field;
  }
  template <class Value>
  void store(Value& field, Value value) {
    std::lock_guard lock(mutex_);
    field = std::move(value);
  }

  mutable std::mutex mutex_;
  QUrl initialURL_;
  std::optional<QString> source_;
  CVEntryState state_ = CVEntryStateWaiting;
  std::optional<QUrl> currentURL_;
  std::shared_ptr<const imaging::Image> representativeImage_;
  std::optional<QString> title_;
  double completionFactor_ = 0.0;
  std::weak_ptr<CVEntryDelegate> delegate_;
  std::shared_ptr<CVError> error_;
};
