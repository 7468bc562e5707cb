#pragma once
// An alert shown as a sheet on a window: window-modal, titled with its message,
// and gone once answered. Callers add their buttons and open it.

#include <QMessageBox>

namespace corvalis {

QMessageBox* makeAlertSheet(QWidget* window, QMessageBox::Icon icon, const QString& message,
                            const QString& informative);

}  // namespace corvalis
