#include "controls/QtEditorView.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QItemSelection>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QUrl>
#include <algorithm>

#include "controls/AlertSheet.h"
#include "controls/LocalizedText.h"
#include "fileutils/PathPredicates.h"

namespace corvalis {

namespace {

// Qt's panel opens a folder instead of choosing it unless it takes folders only;
// one that takes both chooses whatever is selected.
class FilesAndFoldersDialog : public QFileDialog {
public:
    using QFileDialog::QFileDialog;
    void accept() override {
        const QStringList files = selectedFiles();
        bool allExist = !files.isEmpty() && std::all_of(files.begin(), files.end(), [](const QString& file) {
            return QFileInfo::exists(file);
        });
        if (allExist) return QDialog::accept();
        QFileDialog::accept();
    }
};

class NoApplicationsFilter : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
        auto* files = qobject_cast<QFileSystemModel*>(sourceModel());
        return !files || !IsApplication(files->filePath(files->index(row, 0, parent)).toStdString());
    }
};

}  // namespace

QtEditorView::QtEditorView(QWidget* window, QAbstractItemView* items) : window_(window), items_(items) {}

QModelIndex QtEditorView::indexOf(const EditorRow& row) const {
    if (!items_ || !items_->model()) return {};
    QAbstractItemModel* model = items_->model();
    QModelIndex parent = row.group < 0 ? QModelIndex() : model->index(row.group, 0);
    if (row.group >= 0 && !parent.isValid()) return {};
    return model->index(row.row, 0, parent);
}

void QtEditorView::selectRows(const std::vector<EditorRow>& rows) {
    if (!items_ || !items_->selectionModel()) return;
    QItemSelection selection;
    for (const EditorRow& row : rows)
        if (QModelIndex index = indexOf(row); index.isValid()) selection.select(index, index);
    items_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    // The keyboard goes on from the first selected row.
    if (!selection.isEmpty())
        items_->selectionModel()->setCurrentIndex(selection.indexes().first(), QItemSelectionModel::NoUpdate);
}

void QtEditorView::scrollRowToVisible(const EditorRow& row) {
    if (QModelIndex index = indexOf(row); index.isValid()) items_->scrollTo(index);
}

void QtEditorView::expandGroup(int group) {
    if (auto* tree = qobject_cast<QTreeView*>(items_.data())) tree->expand(indexOf(EditorRow{group}));
}

void QtEditorView::editName(const EditorRow& row) {
    if (QModelIndex index = indexOf(row); index.isValid()) {
        items_->setCurrentIndex(index);
        items_->edit(index);
    }
}

void QtEditorView::endEditing() {
    if (!items_) return;
    // Moving the focus commits an open editor the way leaving it by hand does.
    if (QWidget* editor = items_->indexWidget(items_->currentIndex())) editor->clearFocus();
    items_->setFocus();
}

void QtEditorView::beep() { QApplication::beep(); }

void QtEditorView::ask(const EditorAlert& alert, std::function<void(int button)> answer) {
    QMessageBox::Icon icon = alert.style == EditorAlert::Style::Critical        ? QMessageBox::Critical
                             : alert.style == EditorAlert::Style::Informational ? QMessageBox::Information
                                                                                : QMessageBox::Warning;
    QMessageBox* box = makeAlertSheet(window_, icon, QString::fromStdString(alert.message),
                                      QString::fromStdString(alert.informativeText));
    std::vector<std::string> titles = alert.buttons;
    if (titles.empty()) titles.push_back(LocalizedString("OK"));
    std::vector<QPushButton*> buttons;
    for (std::size_t i = 0; i < titles.size(); ++i)
        buttons.push_back(box->addButton(QString::fromStdString(titles[i]),
                                         i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole));
    box->setDefaultButton(buttons.front());
    // Escape answers with the last button, the one that changes nothing.
    box->setEscapeButton(buttons.back());
    QObject::connect(box, &QDialog::finished, box, [box, buttons, answer = std::move(answer)] {
        if (!answer) return;
        auto chosen = std::find(buttons.begin(), buttons.end(), box->clickedButton());
        answer(chosen == buttons.end() ? static_cast<int>(buttons.size()) - 1
                                       : static_cast<int>(chosen - buttons.begin()));
    });
    box->open();
}

void QtEditorView::pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string> paths)> picked) {
    bool both = panel.canChooseFiles && panel.canChooseDirectories;
    QFileDialog* dialog = both ? new FilesAndFoldersDialog(window_, QString::fromStdString(panel.message),
                                                           QString::fromStdString(panel.directory))
                               : new QFileDialog(window_, QString::fromStdString(panel.message),
                                                 QString::fromStdString(panel.directory));
    // The desktop's own panel can do neither of these.
    if (both || panel.hidesApplications) dialog->setOption(QFileDialog::DontUseNativeDialog);
    if (panel.hidesApplications) dialog->setProxyModel(new NoApplicationsFilter(dialog));
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    if (panel.canChooseDirectories && !panel.canChooseFiles)
        dialog->setFileMode(QFileDialog::Directory);
    else
        dialog->setFileMode(panel.allowsMultipleSelection ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    if (!panel.resolvesAliases) dialog->setOption(QFileDialog::DontResolveSymlinks);
    if (!panel.allowedFileTypes.empty()) {
        QStringList patterns;
        for (const std::string& type : panel.allowedFileTypes) patterns << "*." + QString::fromStdString(type);
        dialog->setNameFilter(patterns.join(' '));
    }
    if (!panel.prompt.empty()) dialog->setLabelText(QFileDialog::Accept, QString::fromStdString(panel.prompt));
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, picked = std::move(picked)](int result) {
        std::vector<std::string> paths;
        if (result == QDialog::Accepted)
            for (const QString& file : dialog->selectedFiles()) paths.push_back(file.toStdString());
        dialog->deleteLater();
        if (picked) picked(std::move(paths));
    });
    openPanel_ = dialog;
    dialog->open();
}

void QtEditorView::retitleOpenPanel(const std::string& message, const std::string& prompt) {
    if (!openPanel_ || !openPanel_->isVisible()) return;
    if (!message.empty()) openPanel_->setWindowTitle(QString::fromStdString(message));
    if (!prompt.empty()) openPanel_->setLabelText(QFileDialog::Accept, QString::fromStdString(prompt));
}

void QtEditorView::revealPath(const std::string& path) {
    QString file = QString::fromStdString(path);
    QUrl parent = QUrl::fromLocalFile(QFileInfo(file).absolutePath());
    QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                                       "org.freedesktop.FileManager1", "ShowItems");
    call << QStringList{QUrl::fromLocalFile(file).toString()} << QString();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        QDesktopServices::openUrl(parent);
        return;
    }
    // No file manager that can point at the file: its folder at least.
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [parent](QDBusPendingCallWatcher* done) {
        if (done->isError()) QDesktopServices::openUrl(parent);
        done->deleteLater();
    });
}

}  // namespace corvalis
