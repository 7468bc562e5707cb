#include "pane/ui/ControllerAlerts.h"

#include <QMessageBox>
#include <QPushButton>

#include "controls/LocalizedText.h"

namespace corvalis {

QMessageBox* askAboutControllerThatDoesNotQuit(QWidget* window, std::function<void(bool forced)> decided) {
    auto* box = new QMessageBox(window);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(QMessageBox::Warning);
    box->setWindowTitle(localized("ControllerDoesNotQuit"));
    box->setText(localized("ControllerDoesNotQuit"));
    box->setInformativeText(localized("ControllerDoesNotQuitInfo"));
    QPushButton* force = box->addButton(localized("ForceQuit"), QMessageBox::DestructiveRole);
    QPushButton* wait = box->addButton(localized("Wait"), QMessageBox::RejectRole);
    box->setDefaultButton(wait);
    box->setEscapeButton(wait);
    QObject::connect(box, &QDialog::finished, box, [box, force, decided = std::move(decided)] {
        decided(box->clickedButton() == force);
        box->deleteLater();
    });
    box->open();
    return box;
}

}  // namespace corvalis
