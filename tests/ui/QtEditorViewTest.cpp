#include "controls/QtEditorView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QFileDialog>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTreeView>

using namespace corvalis;

namespace {

template <class Dialog>
Dialog* openSheet(QWidget& window) {
    for (Dialog* dialog : window.findChildren<Dialog*>())
        if (dialog->isVisible()) return dialog;
    return nullptr;
}

}  // namespace

// Questions and panels are window-modal sheets that answer later; nothing waits for them.
TEST(QtEditorView, AsksAndPicksThroughSheetsThatAnswerInTheirCallbacks) {
    QMainWindow window;
    window.show();
    QtEditorView view(&window);
    std::vector<int> answers;
    view.ask(EditorAlert{EditorAlert::Style::Warning, "Remove?", "CantUndo", {"Remove", "Cancel"}},
             [&](int button) { answers.push_back(button); });
    QMessageBox* box = openSheet<QMessageBox>(window);
    ASSERT_TRUE(box);
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(answers.empty());
    box->defaultButton()->click();
    EXPECT_EQ(answers, std::vector<int>{0});
    view.ask(EditorAlert{EditorAlert::Style::Warning, "Remove?", "", {"Remove", "Cancel"}},
             [&](int button) { answers.push_back(button); });
    openSheet<QMessageBox>(window)->reject();  // Escape: the last button, which changes nothing
    EXPECT_EQ(answers, (std::vector<int>{0, 1}));

    std::vector<std::vector<std::string>> picked;
    EditorOpenPanel cvbuFiles;
    cvbuFiles.allowedFileTypes = {"cvbu"};
    view.pickFiles(cvbuFiles, [&](std::vector<std::string> paths) {
        picked.push_back(std::move(paths));
    });
    QFileDialog* panel = openSheet<QFileDialog>(window);
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->windowModality(), Qt::WindowModal);
    EXPECT_EQ(panel->nameFilters(), QStringList{"*.cvbu"});
    panel->reject();
    EXPECT_EQ(picked, std::vector<std::vector<std::string>>{{}});
}

TEST(QtEditorView, RowsOfGroupsAreFoundUnderTheirGroup) {
    QStandardItemModel model;
    for (const char* name : {"Work", "Play"}) {
        auto* group = new QStandardItem(name);
        for (const char* app : {"Mail", "Notes"}) group->appendRow(new QStandardItem(QString(name) + " " + app));
        model.appendRow(group);
    }
    QTreeView tree;
    tree.setModel(&model);
    QtEditorView view(&tree, &tree);
    view.expandGroup(1);
    EXPECT_TRUE(tree.isExpanded(model.index(1, 0)));
    view.selectRows({EditorRow{1, 1}, EditorRow{0}});
    QStringList selected;
    for (const QModelIndex& index : tree.selectionModel()->selectedRows()) selected << index.data().toString();
    selected.sort();
    EXPECT_EQ(selected, QStringList({"Play Notes", "Work"}));
    view.selectRows({});
    EXPECT_FALSE(tree.selectionModel()->hasSelection());
}
