#include "keys/ui/ShortcutsTab.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QInputMethod>
#include <QLabel>
#include <QMessageBox>
#include <QVBoxLayout>
#include <functional>

#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "keys/KVKeyCombinationCenter.h"
#include "keys/KVKeyCombinationValidator.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "keys/ui/KeyCombinationTableKeys.h"

namespace corvalis {

// The controller's rows as a Qt model; every edit goes through the controller.
class ShortcutsTableModel : public QAbstractTableModel {
public:
    using Colour = std::function<ShortcutTextColour(int row, bool rowEnabled)>;

    ShortcutsTableModel(ComKestrovaShortcutsController& controller, Colour colour, QObject* parent)
        : QAbstractTableModel(parent), controller_(controller), colour_(std::move(colour)) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : ShortcutsTab::ColumnCount;
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || index.row() >= rows_) return {};
        int row = index.row();
        switch (index.column()) {
        case ShortcutsTab::EnabledColumn:
            if (role == Qt::CheckStateRole) return controller_.enabledAt(row) ? Qt::Checked : Qt::Unchecked;
            // A screen reader names the check box after its command and says how to use it. The
            // state is in the name too: Qt's table cells do not report that they can be checked.
            if (role == Qt::AccessibleTextRole)
                return localizedFormat(controller_.enabledAt(row) ? "ShortcutEnabledCellOn" : "ShortcutEnabledCellOff",
                                       {controller_.commandAt(row)});
            if (role == Qt::AccessibleDescriptionRole) return localized("ShortcutEnabledCellHint");
            break;
        case ShortcutsTab::CommandColumn:
            if (role == Qt::DisplayRole) return QString::fromStdString(controller_.commandAt(row));
            break;
        case ShortcutsTab::KeyCombinationColumn: {
            std::optional<KVKeyCombination> combination = controller_.keyCombinationAt(row);
            if (role == Qt::DisplayRole) return combination ? QString::fromStdString(combination->text()) : QString();
            if (role == KeyCombinationRole) return combination ? QVariant::fromValue(*combination) : QVariant();
            if (role == Qt::AccessibleTextRole)
                return localizedFormat("ShortcutKeyCombinationCell",
                                       {controller_.commandAt(row),
                                        combination ? combination->text() : LocalizedString("NoKeyCombination")});
            if (role == Qt::AccessibleDescriptionRole) return localized("ShortcutKeyCombinationCellHint");
            if (role == Qt::ForegroundRole && colour_(row, controller_.enabledAt(row)) == ShortcutTextColour::LightGrey)
                return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
            break;
        }
        default:
            break;
        }
        return {};
    }

    bool setData(const QModelIndex& index, const QVariant& value, int role) override {
        if (!index.isValid() || index.row() >= rows_) return false;
        if (index.column() == ShortcutsTab::EnabledColumn && role == Qt::CheckStateRole) {
            controller_.setEnabled(static_cast<Qt::CheckState>(value.toInt()) == Qt::Checked, index.row());
            // The combination's colour follows the check box.
            emit dataChanged(index, index.siblingAtColumn(ShortcutsTab::KeyCombinationColumn));
            return true;
        }
        if (index.column() == ShortcutsTab::KeyCombinationColumn && role == KeyCombinationRole) {
            controller_.setKeyCombination(value.isValid() ? std::optional(value.value<KVKeyCombination>()) : std::nullopt,
                                          index.row());
            emit dataChanged(index, index);
            return true;
        }
        return false;
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        if (!index.isValid()) return Qt::NoItemFlags;
        Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (index.column() == ShortcutsTab::EnabledColumn) flags |= Qt::ItemIsUserCheckable;
        if (index.column() == ShortcutsTab::KeyCombinationColumn) flags |= Qt::ItemIsEditable;
        return flags;
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        switch (section) {
        case ShortcutsTab::EnabledColumn: return localized("ShortcutEnabledColumn");
        case ShortcutsTab::CommandColumn: return localized("ShortcutCommandColumn");
        case ShortcutsTab::KeyCombinationColumn: return localized("ShortcutKeyCombinationColumn");
        default: return {};
        }
    }

    // The rows only appear once (the command list is built on first use); later
    // reloads redraw in place so selection and an open editor survive.
    void reload() {
        if (rows_ != controller_.numberOfRows()) {
            beginResetModel();
            rows_ = controller_.numberOfRows();
            endResetModel();
        } else if (rows_ > 0) {
            emit dataChanged(index(0, 0), index(rows_ - 1, ShortcutsTab::ColumnCount - 1));
        }
    }

private:
    ComKestrovaShortcutsController& controller_;
    Colour colour_;
    int rows_ = 0;
};

ShortcutsTab::ShortcutsTab(CorvalisPreferences& prefs, NotificationCenter& distributed, QWidget* page,
                           QWidget* window, KVKeyCombinationValidator* validator, QObject* parent)
    : QObject(parent),
      QtEditorView(window ? window : page->window()),
      ownValidator_(validator ? nullptr : std::make_unique<KVKeyCombinationValidator>(prefs)),
      validator_(validator ? *validator : *ownValidator_),
      controller_(std::make_unique<ComKestrovaShortcutsController>(prefs, validator_, distributed, *this)) {
    content_ = new QWidget(page);
    auto* pageLayout = page->layout() ? page->layout() : new QVBoxLayout(page);
    pageLayout->addWidget(content_);
    auto* layout = new QVBoxLayout(content_);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* explanation = new QLabel(localized("ShortcutsExplanation"), content_);
    explanation->setWordWrap(true);
    layout->addWidget(explanation);

    table_ = new KVTableView(content_);
    setItemView(table_);
    model_ = new ShortcutsTableModel(
        *controller_, [this](int row, bool enabled) { return textColour(row, enabled); }, this);
    table_->setModel(model_);
    table_->setItemDelegateForColumn(KeyCombinationColumn, new KVKeyCombinationCellDelegate(controller_.get(), table_));
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    // Tab leaves the table; arrows move within it.
    table_->setTabKeyNavigation(false);
    table_->setAlternatingRowColors(true);
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setSectionResizeMode(EnabledColumn, QHeaderView::ResizeToContents);
    table_->horizontalHeader()->setSectionResizeMode(CommandColumn, QHeaderView::Stretch);
    table_->horizontalHeader()->setSectionResizeMode(KeyCombinationColumn, QHeaderView::Interactive);
    table_->horizontalHeader()->resizeSection(KeyCombinationColumn, 140);
    table_->setAccessibleName(localized("Shortcuts"));
    table_->installEventFilter(this);
    explanation->setBuddy(table_);
    layout->addWidget(table_, 1);
    controller_->setTable(static_cast<QWidget*>(table_.data()));

    connect(QGuiApplication::inputMethod(), &QInputMethod::localeChanged, this, &ShortcutsTab::keyboardMayHaveChanged);
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) keyboardMayHaveChanged();
    });
}

ShortcutsTab::~ShortcutsTab() {
    // The widgets call into the controller (an open editor ends its recording), so they go first.
    if (table_) table_->removeEventFilter(this);
    delete content_.data();
}

void ShortcutsTab::initializePane(bool firstTime) { controller_->initializePane(firstTime); }

void ShortcutsTab::willShowPane() { controller_->willShowPane(); }

void ShortcutsTab::updatePane(std::string& report) { controller_->updatePane(report); }

void ShortcutsTab::reloadData() { model_->reload(); }

void ShortcutsTab::ask(const EditorAlert& alert, std::function<void(int button)> answer) {
    QtEditorView::ask(alert, std::move(answer));
    // The sheet just opened is the window's newest message box.
    QList<QMessageBox*> boxes = window()->findChildren<QMessageBox*>(QString(), Qt::FindDirectChildrenOnly);
    alert_ = boxes.isEmpty() ? nullptr : boxes.last();
}

bool ShortcutsTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == table_ && handleKeyCombinationTableKey(table_, event, EnabledColumn, KeyCombinationColumn)) return true;
    return QObject::eventFilter(watched, event);
}

ShortcutTextColour ShortcutsTab::textColour(int row, bool rowEnabled) const {
    bool windowIsKey = table_ && table_->isActiveWindow();
    bool tableIsFocused = table_ && table_->hasFocus();
    bool selected = table_ && table_->selectionModel() && table_->selectionModel()->isRowSelected(row, QModelIndex());
    return ComKestrovaShortcutsController::keyCombinationTextColour(rowEnabled, windowIsKey, tableIsFocused, selected);
}

void ShortcutsTab::keyboardMayHaveChanged() {
    // Re-reading the layout is cheap; redrawing every list of combinations only happens on a real change.
    if (KVKeyCombinationCenter::sharedCenter().layoutChanged()) validator_.onKeyboardChanged();
}

}  // namespace corvalis
