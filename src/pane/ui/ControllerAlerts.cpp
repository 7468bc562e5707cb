#include "pane/ui/ControllerAlerts.h"

#include <QMessageBox>
#include <QPushButton>

#include "controls/AlertSheet.h"
#include "controls/LocalizedText.h"

namespace corvalis {

QMessageBox* askAboutControllerThatDoesNotQuit(QWidget* window, std::function<void(bool forced)> decided) {
    QMessageBox* box = makeAlertSheet(window, QMessageBox::Warning, localized("ControllerDoesNotQuit"),
                                      localized("ControllerDoesNotQuitInfo"));
    QPushButton* force = box->addButton(localized("ForceQuit"), QMessageBox::DestructiveRole);
    QPushButton* wait = box->addButton(localized("Wait"), QMessageBox::RejectRole);
    box->setDefaultButton(wait);
    box->setEscapeButton(wait);
    QObject::connect(box, &QDialog::finished, box,
                     [box, force, decided = std::move(decided)] { decided(box->clickedButton() == force); });
    box->open();
    return box;
}

}  // namespace corvalis
