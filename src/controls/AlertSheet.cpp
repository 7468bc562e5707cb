#include "controls/AlertSheet.h"

namespace corvalis {

QMessageBox* makeAlertSheet(QWidget* window, QMessageBox::Icon icon, const QString& message,
                            const QString& informative) {
    auto* box = new QMessageBox(window);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(icon);
    box->setWindowTitle(message);
    box->setText(message);
    box->setInformativeText(informative);
    // Deferred, so handlers of the same signal can still ask which button was clicked.
    QObject::connect(box, &QDialog::finished, box, &QObject::deleteLater);
    return box;
}

}  // namespace corvalis
