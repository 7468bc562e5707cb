#pragma once
// An EditorView that writes down what it was asked, in order, and answers
// questions and file panels with what the test queued (else the first button, no files).
// With `holdPanels` a panel stays open until the test calls `closePanel`.

#include <deque>
#include <string>
#include <vector>

#include "pane/EditorView.h"

namespace corvalis::test {

inline std::string describe(const EditorRow& row) {
    return row.group < 0 ? std::to_string(row.row) : std::to_string(row.group) + "." + std::to_string(row.row);
}

template <class View = EditorView>
class RecordingView : public View {
public:
    std::vector<std::string> calls;
    std::vector<EditorAlert> alerts;
    std::vector<EditorOpenPanel> panels;
    std::deque<int> answers;
    std::deque<std::vector<std::string>> pickedFiles;
    bool holdPanels = false;
    std::function<void(std::vector<std::string>)> heldPanel;

    void selectRows(const std::vector<EditorRow>& rows) override {
        std::string text = "select";
        for (const EditorRow& row : rows) text += " " + describe(row);
        calls.push_back(text);
    }
    void scrollRowToVisible(const EditorRow& row) override { calls.push_back("scroll " + describe(row)); }
    void expandGroup(int group) override { calls.push_back("expand " + std::to_string(group)); }
    void editName(const EditorRow& row) override { calls.push_back("edit " + describe(row)); }
    void endEditing() override { calls.push_back("end editing"); }
    void beep() override { calls.push_back("beep"); }
    void ask(const EditorAlert& alert, std::function<void(int)> answer) override {
        calls.push_back("ask " + alert.message + " | " + alert.informativeText);
        alerts.push_back(alert);
        int button = answers.empty() ? 0 : answers.front();
        if (!answers.empty()) answers.pop_front();
        if (answer) answer(button);
    }
    void pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string>)> picked) override {
        calls.push_back("pick files");
        panels.push_back(panel);
        if (holdPanels) {
            heldPanel = std::move(picked);
            return;
        }
        std::vector<std::string> files;
        if (!pickedFiles.empty()) {
            files = pickedFiles.front();
            pickedFiles.pop_front();
        }
        if (picked) picked(files);
    }
    void closePanel(std::vector<std::string> files = {}) {
        auto picked = std::move(heldPanel);
        heldPanel = nullptr;
        if (picked) picked(std::move(files));
    }
    void retitleOpenPanel(const std::string& message, const std::string& prompt) override {
        if (heldPanel) calls.push_back("retitle " + message + " | " + prompt);
    }
    void revealPath(const std::string& path) override { calls.push_back("reveal " + path); }
};

using RecordingEditorView = RecordingView<>;

// A recording view of a one-level list that keeps the selection it was given, for
// views whose controller asks for the selected rows.
template <class View>
class RecordingListView : public RecordingView<View> {
public:
    std::vector<int> selection;
    void selectRows(const std::vector<EditorRow>& rows) override {
        RecordingView<View>::selectRows(rows);
        selection.clear();
        for (const EditorRow& row : rows) selection.push_back(row.row);
    }
    std::vector<int> selectedRows() const { return selection; }
};

}  // namespace corvalis::test
