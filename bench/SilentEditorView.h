#pragma once
// An editor view that is not on screen, for timing controllers alone: nothing is
// selected or shown, questions and panels are never answered.

#include "pane/EditorView.h"

namespace corvalis::bench {

template <class View = EditorView>
class SilentView : public View {
public:
    void selectRows(const std::vector<EditorRow>&) override {}
    void scrollRowToVisible(const EditorRow&) override {}
    void expandGroup(int) override {}
    void editName(const EditorRow&) override {}
    void endEditing() override {}
    void beep() override {}
    void ask(const EditorAlert&, std::function<void(int)>) override {}
    void pickFiles(const EditorOpenPanel&, std::function<void(std::vector<std::string>)>) override {}
    void retitleOpenPanel(const std::string&, const std::string&) override {}
    void revealPath(const std::string&) override {}
};

}  // namespace corvalis::bench
