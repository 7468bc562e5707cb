#pragma once
// EditorView over a Qt item view: rows become the model's indexes, questions are
// window-modal QMessageBoxes and file panels window-modal QFileDialogs, each
// opened with open() so the caller's answer arrives later in its callback.

#include <QPointer>

#include "pane/EditorView.h"

class QAbstractItemView;
class QFileDialog;
class QModelIndex;
class QWidget;

namespace corvalis {

class QtEditorView : public virtual EditorView {
public:
    // Sheets belong to `window`; `items` may be set later (setItemView).
    explicit QtEditorView(QWidget* window, QAbstractItemView* items = nullptr);

    void setItemView(QAbstractItemView* items) { items_ = items; }
    QAbstractItemView* itemView() const { return items_; }

    void selectRows(const std::vector<EditorRow>& rows) override;
    void scrollRowToVisible(const EditorRow& row) override;
    void expandGroup(int group) override;
    void editName(const EditorRow& row) override;
    void endEditing() override;
    void beep() override;
    void ask(const EditorAlert& alert, std::function<void(int button)> answer) override;
    void pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string> paths)> picked) override;
    void retitleOpenPanel(const std::string& message, const std::string& prompt) override;
    void revealPath(const std::string& path) override;

protected:
    QModelIndex indexOf(const EditorRow& row) const;
    QWidget* window() const { return window_; }

private:
    QPointer<QWidget> window_;
    QPointer<QAbstractItemView> items_;
    QPointer<QFileDialog> openPanel_;
};

}  // namespace corvalis
