#include "menus/ui/ConfigureMenusSheet.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "controls/LocalizedText.h"
#include "menus/MenusController.h"

namespace corvalis {

ConfigureMenusSheet::ConfigureMenusSheet(MenusController& controller, const std::vector<Page>& pages, QWidget* window)
    : QDialog(window), controller_(controller) {
    setWindowModality(Qt::WindowModal);
    setWindowTitle(localized("ConfigureMenus"));
    auto* layout = new QVBoxLayout(this);
    tabs_ = new QTabWidget(this);
    tabs_->setAccessibleName(localized("ConfigureMenus"));
    for (const Page& page : pages) {
        QWidget* widget = page.make(this);
        widget->setObjectName(QString::fromStdString(page.identifier));
        tabs_->addTab(widget, localized(page.identifier.c_str()));
    }
    layout->addWidget(tabs_, 1);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* doneButton = buttons->addButton(localized("Done"), QDialogButtonBox::AcceptRole);
    // Return renames rows in the tables; the sheet closes with its button or Escape.
    doneButton->setAutoDefault(false);
    connect(doneButton, &QPushButton::clicked, this, [this] { controller_.onCloseConfigureMenus(true); });
    layout->addWidget(buttons);
    connect(tabs_, &QTabWidget::currentChanged, this, [this](int index) {
        std::string identifier = tabs_->widget(index)->objectName().toStdString();
        controller_.tabWillSelect(identifier);
        controller_.tabDidSelect(identifier);
    });
    connect(this, &QDialog::finished, this, [this](int result) { controller_._configureMenusSheetDidEnd(result); });
    // Room for an editor whose options stand beside its menu.
    resize(700, 480);
}

QWidget* ConfigureMenusSheet::page(const std::string& identifier) const {
    for (int i = 0; i < tabs_->count(); ++i)
        if (tabs_->widget(i)->objectName().toStdString() == identifier) return tabs_->widget(i);
    return nullptr;
}

void ConfigureMenusSheet::done(int result) {
    // Closed from outside the logic (Escape, the pane): the editors end their sheet first,
    // and the logic closes the sheet again with the code of its own button.
    if (controller_.configureMenusSheetShown()) return controller_.onCloseConfigureMenus(true);
    QDialog::done(result);
}

}  // namespace corvalis
