#include "ui/preferences/CVSaveSheet.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "capture/ResultName.h"
#include "delivery/CVUtils.h"
#include "settings/CVPreferences.h"
#include "ui/look/Theme.h"
#include "ui/preferences/CVSnapshotPreferencesViewController.h"
#include "ui/window/ElidedLabel.h"
#include "ui/window/ReplaceQuestion.h"

namespace {

/// The parts of one sheet; owned by its dialogue.
class SheetContents : public QObject {
 public:
  SheetContents(QDialog& sheet, const std::shared_ptr<CVPreferences>& preferences,
                const QString& name, const QUrl& folder)
      : QObject(&sheet), sheet_(sheet), preferences_(preferences), folder_(folder) {
    addNameAndFolder(name);
    addPane();
    addButtons();
    showFolder();
    showExtension();
  }

  QUrl chosen() const {
    const QString name = CVUtils::legalFileName(name_->text().trimmed());
    return QUrl::fromLocalFile(QDir(folder_.toLocalFile()).filePath(name));
  }

 private:
  void addNameAndFolder(const QString& name) {
    name_ = new QLineEdit(name);
    name_->setObjectName(QStringLiteral("nameField"));
    folderLabel_ = new ui::ElidedLabel;
    auto* change = new QPushButton(QDialog::tr("Change…"));
    change->setAutoDefault(false);
    connect(change, &QPushButton::clicked, this, [this] { chooseFolder(); });
    auto* folderRow = folderRow_ = new QHBoxLayout;
    folderRow->addWidget(folderLabel_, 1);
    folderRow->addWidget(change);
    extension_ = new QLabel;
    extension_->setObjectName(QStringLiteral("extensionLabel"));
    auto* nameRow = nameRow_ = new QHBoxLayout;
    nameRow->setSpacing(4);
    nameRow->addWidget(name_, 1);
    nameRow->addWidget(extension_);
    auto* form = form_ = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setContentsMargins(24, 20, 24, 4);
    form->setVerticalSpacing(12);
    form->addRow(QDialog::tr("Name:"), nameRow);
    form->addRow(QDialog::tr("Folder:"), folderRow);
    name_->setAccessibleName(QDialog::tr("Name"));
    auto* parts = new QVBoxLayout(&sheet_);
    parts->setContentsMargins(0, 0, 0, 0);
    parts->addLayout(form);
    name_->selectAll();
    connect(name_, &QLineEdit::textChanged, this, [this] {
      showWhetherNamed();
      showExtension();
    });
  }

  void addPane() {
    auto* pane = new CVSnapshotPreferencesViewController;
    pane->setAsAccessoryView(true);
    pane->setParentWindow(&sheet_);
    pane->setPreferences(preferences_);
    pane->setFormatChanged([this] { showExtension(); });
    sheet_.layout()->addWidget(pane);
    alignWith(*pane);
  }

  /// The name and the folder begin where the pane's fields do.
  void alignWith(const QWidget& pane) {
    const auto* label = pane.findChild<QLabel*>(QStringLiteral("formatLabel"));
    if (!label) return;
    form_->setHorizontalSpacing(12);
    for (auto* own : {form_->labelForField(nameRow_), form_->labelForField(folderRow_)}) {
      own->setMinimumWidth(label->minimumWidth());
      static_cast<QLabel*>(own)->setAlignment(label->alignment());
    }
  }

  void addButtons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    buttons->setContentsMargins(24, 0, 24, 20);
    save_ = buttons->button(QDialogButtonBox::Save);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { save(); });
    connect(buttons, &QDialogButtonBox::rejected, &sheet_, &QDialog::reject);
    sheet_.layout()->addWidget(buttons);
    showWhetherNamed();
  }

  void showWhetherNamed() {
    if (save_) save_->setEnabled(!name_->text().trimmed().isEmpty());
  }

  void showFolder() { folderLabel_->setFullText(folder_.toLocalFile()); }

  /// The extension that is appended to the name, where it does not end with it already.
  void showExtension() {
    const QString name = chosen().fileName();
    extension_->setText(result().fileName().sliced(name.size()));
  }

  QUrl result() const { return capture::withExtensionOfFormat(chosen(), preferences_->format()); }

  /// Only on the disk is anything replaced: other destinations get a file of that name in a folder
  /// of their own.
  void save() {
    if (preferences_->destination() != QStringLiteral("Disk")) return sheet_.accept();
    ui::whenMayBeWritten(
        &sheet_, result(), [this] { sheet_.accept(); }, [this] { name_->setFocus(); });
  }

  void chooseFolder() {
    auto* panel = new QFileDialog(&sheet_, QDialog::tr("Folder"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setDirectoryUrl(folder_);
    connect(panel, &QFileDialog::urlSelected, this, [this](const QUrl& chosen) {
      folder_ = chosen;
      showFolder();
    });
    panel->open();
  }

  QDialog& sheet_;
  const std::shared_ptr<CVPreferences> preferences_;
  QUrl folder_;
  QFormLayout* form_ = nullptr;
  QHBoxLayout* nameRow_ = nullptr;
  QHBoxLayout* folderRow_ = nullptr;
  QLineEdit* name_ = nullptr;
  QLabel* extension_ = nullptr;
  ui::ElidedLabel* folderLabel_ = nullptr;
  QPushButton* save_ = nullptr;
};

}  // namespace

void CVSaveSheet::beginSheet(const std::shared_ptr<CVPreferences>& preferences, const QString& name,
                             const std::optional<QUrl>& folder,
                             std::function<void(std::optional<QUrl> chosen)> completion) {
  auto* sheet = new QDialog(mainWindow_);
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  sheet->setWindowModality(Qt::WindowModal);
  sheet->setWindowTitle(QDialog::tr("Save"));
  sheet->setMinimumWidth(520);
  const QUrl start = folder.value_or(QUrl::fromLocalFile(QDir::homePath()));
  auto* contents = new SheetContents(*sheet, preferences, name, start);
  QObject::connect(sheet, &QDialog::finished, sheet, [contents, completion](int result) {
    completion(result == QDialog::Accepted ? std::optional(contents->chosen()) : std::nullopt);
  });
  sheet->open();
}
