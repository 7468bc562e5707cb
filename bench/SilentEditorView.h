#pragma once
// An editor view that is not on screen, for timing controllers alone: nothing is
// selected or shown, questions and panels are never answered; and a computer
// running no application.

#include "groups/GroupsController.h"
#include "pane/EditorView.h"
#include "platform/RunningApplications.h"

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

// An outline that is not on screen: every question answered "no", nothing done.
class SilentGroupsView : public SilentView<GroupsView> {
public:
    bool isExpanded(int) const override { return false; }
    void collapseAll() override {}
    bool isEditingName() const override { return false; }
};

// A computer running no application.
class NoRunningApplications : public RunningApplications {
public:
    std::vector<RunningApplication> runningApplications() override { return {}; }
    Token addObserver(Observer, Observer) override { return 0; }
    void removeObserver(Token) override {}
};

}  // namespace corvalis::bench
