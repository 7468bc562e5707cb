#pragma once
// The Configure Menus sheet: a window-modal dialog whose tabs hold the menu
// editors' pages, in the order they were registered. However it is closed
// (its button, Escape, the pane), the Menus tab's logic hears of it first.

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

class QTabWidget;

namespace corvalis {

class MenusController;

class ConfigureMenusSheet : public QDialog {
    Q_OBJECT

public:
    struct Page {
        std::string identifier;
        std::function<QWidget*(QWidget* sheet)> make;
    };

    ConfigureMenusSheet(MenusController& controller, const std::vector<Page>& pages, QWidget* window);

    QTabWidget* tabs() const { return tabs_; }
    QWidget* page(const std::string& identifier) const;
    void done(int result) override;

private:
    MenusController& controller_;
    QTabWidget* tabs_;
};

}  // namespace corvalis
