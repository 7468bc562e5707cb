#pragma once
// What a tab's or sheet's controller asks of its widgets. Plain C++ so that the
// controllers run in tests without a window. Questions and file panels answer
// later, through their callbacks: nothing here blocks. Reloading is not asked
// for: the item models' own signals redraw the views.

#include <functional>
#include <string>
#include <vector>

namespace corvalis {

// A row of a list, or of a group in a two-level list (`group` is -1 at the top level).
struct EditorRow {
    int row = 0;
    int group = -1;
    bool operator==(const EditorRow&) const = default;
};

struct EditorAlert {
    enum class Style { Warning, Informational, Critical };
    Style style = Style::Warning;
    std::string message;
    std::string informativeText;
    // The first is the default button; an empty list shows one "OK".
    std::vector<std::string> buttons;
};

struct EditorOpenPanel {
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    bool allowsMultipleSelection = false;
    bool resolvesAliases = true;
    // Applications are not listed (editors of documents and folders).
    bool hidesApplications = false;
    // Extensions without the dot; empty allows every file.
    std::vector<std::string> allowedFileTypes;
    std::string directory;
    std::string prompt;
    std::string message;
};

class EditorView {
public:
    virtual ~EditorView() = default;

    // Selects exactly these rows (none: clears the selection).
    virtual void selectRows(const std::vector<EditorRow>& rows) = 0;
    virtual void scrollRowToVisible(const EditorRow& row) = 0;
    virtual void expandGroup(int group) = 0;
    // Opens the name of the row for typing.
    virtual void editName(const EditorRow& row) = 0;
    // Ends any typing in the view, keeping what was typed.
    virtual void endEditing() = 0;
    virtual void beep() = 0;
    // A sheet on the window; `answer` gets the index of the button chosen (0 the first),
    // and may be empty when the answer does not matter.
    virtual void ask(const EditorAlert& alert, std::function<void(int button)> answer) = 0;
    // An open panel as a sheet; `picked` gets the chosen paths, none when cancelled.
    virtual void pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string> paths)> picked) = 0;
    // Gives the panel this view has open new words (an empty text keeps its own);
    // nothing happens when no panel is open.
    virtual void retitleOpenPanel(const std::string& message, const std::string& prompt) = 0;
    // Shows the file in the file manager.
    virtual void revealPath(const std::string& path) = 0;
};

// Selects these rows of a one-level list and brings the first into view.
inline void selectRowsAndScroll(EditorView& view, const std::vector<int>& rows) {
    std::vector<EditorRow> selection;
    for (int row : rows) selection.push_back({row});
    view.selectRows(selection);
    if (!selection.empty()) view.scrollRowToVisible(selection.front());
}

}  // namespace corvalis
