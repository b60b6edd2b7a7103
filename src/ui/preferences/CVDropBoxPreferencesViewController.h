#pragma once

#include <QWidget>
#include <functional>
#include <memory>

class CVDefaultPreferences;
namespace Ui {
class CVDropBoxPreferencesViewController;
}

/// The pane that links the program to a Dropbox account. Main thread.
class CVDropBoxPreferencesViewController : public QWidget {
  Q_OBJECT

 public:
  /// Missing ones do nothing.
  struct Account {
    /// Begins the authorization in the user's browser.
    std::function<void()> authorize;
    std::function<void()> unlink;
  };

  explicit CVDropBoxPreferencesViewController(QWidget* parent = nullptr);
  ~CVDropBoxPreferencesViewController() override;

  void setAccount(Account account) { account_ = std::move(account); }
  void setupWithPreferences(std::shared_ptr<CVDefaultPreferences> preferences);
  /// The window that goes away once linking has begun or the account is unlinked. Not owned.
  void setParentWindow(QWidget* window) { parentWindow_ = window; }

  /// Titles the button by whether an account is linked; run each time the pane appears.
  void setup();
  void onLink();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  std::unique_ptr<Ui::CVDropBoxPreferencesViewController> layout_;
  std::shared_ptr<CVDefaultPreferences> preferences_;
  Account account_;
  QWidget* parentWindow_ = nullptr;
};
