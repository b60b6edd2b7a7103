#include "ui/controls/CVPassthroughTextField.h"

CVPassthroughTextField::CVPassthroughTextField(QWidget* parent) : QLabel(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}
