#include "support/PrefsFixture.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

using Names = std::vector<std::string>;

Dictionary app(const std::string& path) { return Dictionary{{keys::Path, path}}; }

Dictionary userGroup(const std::string& name, Array applications = Array()) {
    return Dictionary{{keys::Name, name}, {keys::CanBeDeleted, true}, {keys::Applications, applications},
                      {keys::KeyboardShortcut, Dictionary{{keys::CommandID, "2000"}, {keys::Enabled, false},
                                                          {keys::Action, Value::int32(0)}}}};
}

Dictionary excludedGroup(Array applications = Array()) {
    return Dictionary{{keys::Name, "ExcludedApplications"}, {keys::CanBeDeleted, false},
                      {keys::Applications, applications}};
}

Names namesOf(const Value& list) {
    Names names;
    for (const Value& entry : list.array() ? *list.array() : Array()) names.push_back(entry[keys::Name].stringOr("(absent)"));
    return names;
}

class GroupLoaders : public test::PrefsTest {
protected:
    static Names groupNames(const Dictionary& loaded) { return namesOf(loaded[keys::Groups]); }
    Dictionary group(const Dictionary& loaded, const std::string& name) {
        for (const Value& entry : plist::asArray(loaded[keys::Groups]).value_or(Array()))
            if (entry[keys::Name].string() && *entry[keys::Name].string() == name) return *entry.dictionary();
        ADD_FAILURE() << "no group " << name;
        return {};
    }
};

}  // namespace

TEST_F(GroupLoaders, ThereIsAlwaysExactlyOneExcludedGroup) {
    EXPECT_EQ(groupNames(load(Dictionary{{keys::Groups, Array{userGroup("Work")}}})),
              (Names{"Excluded Applications", "Work"}));
    Dictionary loaded = load(Dictionary{{keys::Groups, Array{excludedGroup(Array{app("/a/First.app")}), "junk",
                                                  excludedGroup(Array{app("/a/Second.app")})}}});
    ASSERT_EQ(groupNames(loaded), Names{"Excluded Applications"});
    EXPECT_EQ(namesOf(group(loaded, "Excluded Applications")[keys::Applications]), Names{"First"});
}

TEST_F(GroupLoaders, ArrangingSortsWhatArrangeWhatNames) {
    Array mixed{app("/x/Zed.app"), app("/x/alpha.app"), app("/x/Mid.app")};
    Array groups{userGroup("Tools", mixed), userGroup("Apps", mixed), excludedGroup(mixed)};
    auto loadWith = [&](bool arranged, int what) {
        return load(Dictionary{{keys::Groups, groups.deepCopy()},
                               {keys::KeepGroupsAndApplicationsArranged, arranged},
                               {keys::ArrangeWhat, Value::int32(what)}});
    };
    const Names stored{"Zed", "alpha", "Mid"}, sorted{"alpha", "Mid", "Zed"}, asListed{"Tools", "Apps", "Excluded Applications"};
    // ArrangeWhat 1 sorts the groups, 2 their applications; the excluded group's are sorted whatever is set.
    struct Case {
        bool arranged;
        int what;
        Names groups, applications;
    } cases[] = {{true, 1, {"Apps", "Excluded Applications", "Tools"}, stored},
                 {true, 2, asListed, sorted},
                 {false, 0, asListed, stored}};
    for (const Case& c : cases) {
        Dictionary loaded = loadWith(c.arranged, c.what);
        EXPECT_EQ(groupNames(loaded), c.groups) << c.what;
        EXPECT_EQ(namesOf(group(loaded, "Tools")[keys::Applications]), c.applications) << c.what;
        EXPECT_EQ(namesOf(group(loaded, "Excluded Applications")[keys::Applications]), sorted) << c.what;
    }
}

TEST_F(GroupLoaders, RecordsAreRebuiltWithTheirDefaults) {
    Dictionary stored = userGroup("Work", Array{Dictionary{{keys::Name, "Stale"}, {keys::Path, "/opt/Editor.app"},
                                                           {keys::AliasData, Data{1, 2, 3}}, {"Extra", true}},
                                                Dictionary{{keys::Path, "/opt/Viewer.app"}, {keys::AliasData, "text"}},
                                                Dictionary{{keys::Name, "No path"}}, Value::int32(1)});
    stored.set(keys::Icon, Value::int32(9));
    stored.set(keys::ShowInQuitMenu, false);
    stored.set(keys::Hide, "yes");
    stored.set("Obsolete", true);
    Dictionary work = group(load(Dictionary{{keys::Groups, Array{stored}},
                                            {keys::KeepGroupsAndApplicationsArranged, false}}),
                            "Work");
    EXPECT_EQ(work[keys::Applications],
              Value(Array{Dictionary{{keys::Name, "Editor"}, {keys::Path, "/opt/Editor.app"},
                                     {keys::AliasData, Data{1, 2, 3}}},
                          Dictionary{{keys::Name, "Viewer"}, {keys::Path, "/opt/Viewer.app"}}}));
    // A field of the wrong type gets its default; a stored one is kept; unknown ones go.
    EXPECT_EQ(work[keys::Icon], Value("YellowFolder"));
    EXPECT_EQ(work[keys::Hide], Value(false));
    EXPECT_EQ(work[keys::ShowInQuitMenu], Value(false));
    EXPECT_FALSE(work.contains("Obsolete"));
}

TEST_F(GroupLoaders, InvalidShortcutsAreDisabledAndMissingOnesGetCommandIds) {
    Dictionary bad = userGroup("Bad");
    bad.set(keys::KeyboardShortcut, Dictionary{{keys::CommandID, "2004"}, {keys::Enabled, true},
                                               {keys::Action, Value::int32(5)}, {keys::Character, Value::int32(98)},
                                               {keys::VirtualKeyCode, Value::int32(11)},
                                               {keys::Modifiers, Value::int32(256)}});
    Dictionary keyless = userGroup("Keyless");
    keyless.set(keys::KeyboardShortcut, Dictionary{{keys::CommandID, "2001"}, {keys::Action, Value::int32(-1)},
                                                   {keys::Character, Value::int32(98)}});
    Dictionary bare1 = userGroup("Bare1"), bare2 = userGroup("Bare2"), valid = userGroup("Valid");
    bare1.remove(keys::KeyboardShortcut);
    bare2.remove(keys::KeyboardShortcut);
    valid.set(keys::KeyboardShortcut, Dictionary{{keys::CommandID, "2000"}, {keys::Enabled, true},
                                                 {keys::Action, Value::int32(2)}, {"Note", "kept"}});
    Dictionary loaded = load(Dictionary{{keys::Groups, Array{bad, keyless, bare1, valid, bare2}}});

    EXPECT_EQ(group(loaded, "Bad")[keys::KeyboardShortcut],
              Value(Dictionary{{keys::Character, Value::int32(98)}, {keys::VirtualKeyCode, Value::int32(11)},
                               {keys::Modifiers, Value::int32(256)}, {keys::CommandID, "2004"},
                               {keys::Enabled, false}, {keys::Action, Value::int32(0)}}));
    EXPECT_EQ(group(loaded, "Keyless")[keys::KeyboardShortcut],
              Value(Dictionary{{keys::CommandID, "2001"}, {keys::Enabled, false}, {keys::Action, Value::int32(0)}}));
    EXPECT_EQ(group(loaded, "Valid")[keys::KeyboardShortcut],
              Value(Dictionary{{keys::CommandID, "2000"}, {keys::Enabled, true}, {keys::Action, Value::int32(2)},
                               {"Note", "kept"}}));
    // New ids fill the run after 2000, 2001 in list order (the list is sorted by name here).
    EXPECT_EQ(group(loaded, "Bare1")[keys::KeyboardShortcut],
              Value(Dictionary{{keys::CommandID, "2002"}, {keys::Enabled, false}, {keys::Action, Value::int32(0)}}));
    EXPECT_EQ((*group(loaded, "Bare2")[keys::KeyboardShortcut].dictionary())[keys::CommandID], Value("2003"));
    EXPECT_FALSE(group(loaded, "Excluded Applications").contains(keys::KeyboardShortcut));
}

TEST_F(GroupLoaders, ExcludedGroupDecidesWhetherTheMigratedQuitMenuShowsIt) {
    load(Dictionary());
    auto quitMenuShowsExcluded = [&](Value showInQuitMenu, bool legacySwitch, Array applications) {
        Dictionary excluded = excludedGroup(applications);
        if (!showInQuitMenu.isAbsent()) excluded.set(keys::ShowInQuitMenu, showInQuitMenu);
        prefs.setBool(legacySwitch, keys::AddExcludedApplications);
        prefs.setArray(Array{excluded}, keys::Groups);
        return prefs._loadGroups();
    };
    Array one{app("/a/App.app")};
    EXPECT_TRUE(quitMenuShowsExcluded(Value(), true, one));
    EXPECT_FALSE(quitMenuShowsExcluded(Value(), false, one));
    EXPECT_FALSE(quitMenuShowsExcluded(Value(false), true, one));
    EXPECT_TRUE(quitMenuShowsExcluded(Value(true), false, one));
    EXPECT_TRUE(quitMenuShowsExcluded("not a boolean", true, one));
    EXPECT_FALSE(quitMenuShowsExcluded(Value(true), true, Array{"no record"}));
}

TEST_F(GroupLoaders, CustomApplicationsKeepTheirOptionsForThisMachine) {
    Array stored{
        Dictionary{{keys::Path, "/opt/Zeta.app"},
                   {keys::Options, Dictionary{{keys::ForceRosetta, true}, {keys::Force32BitMode, true},
                                              {keys::DontHideOnHideOthers, true}, {"Future", "kept"}}}},
        Dictionary{{keys::Path, "/opt/Alpha.app"}, {keys::AliasData, Data{7}},
                   {keys::Options, Dictionary{{keys::DontHideInSingleAppMode, false},
                                              {keys::DontHideOnHideOthers, true}}}},
        Dictionary{{keys::Path, "/opt/Mid.app"}, {keys::Options, Dictionary{{keys::DontHideInSingleAppMode, "x"}}}},
        Dictionary{{keys::Path, "/opt/Plain.app"}, {keys::Options, Value::int32(3)}},
        Dictionary{{keys::Name, "pathless"}},
    };
    Dictionary loaded = load(Dictionary{{keys::CustomApplications, stored}});
    Value apps = loaded[keys::CustomApplications];
    EXPECT_EQ(namesOf(apps), (Names{"Alpha", "Mid", "Plain", "Zeta"}));
    EXPECT_EQ(record(apps, 0), (Dictionary{{keys::Name, "Alpha"}, {keys::Path, "/opt/Alpha.app"},
                                           {keys::AliasData, Data{7}},
                                           {keys::Options, Dictionary{{keys::DontHideInSingleAppMode, false},
                                                                      {keys::DontHideOnHideOthers, true}}}}));
    EXPECT_EQ(record(apps, 1)[keys::Options], Value(Dictionary()));
    EXPECT_FALSE(record(apps, 2).contains(keys::Options));
    EXPECT_EQ(record(apps, 3)[keys::Options],
              Value(Dictionary{{keys::Force32BitMode, true}, {keys::DontHideOnHideOthers, true}, {"Future", "kept"},
                               {keys::DontHideInSingleAppMode, true}}));

    machine.is64BitProcessor = [] { return false; };
    loaded = load(Dictionary{{keys::CustomApplications, stored}});
    EXPECT_FALSE((*record(loaded[keys::CustomApplications], 3)[keys::Options].dictionary()).contains(keys::Force32BitMode));
}

TEST_F(GroupLoaders, SwitchMenuExclusionsAreSortedAndReloadable) {
    Dictionary loaded = load(Dictionary{{keys::SwitchMenuExcludedApplications,
                                         Array{app("/b/Beta.app"), "junk", app("/b/alpha.app")}}});
    EXPECT_EQ(namesOf(loaded[keys::SwitchMenuExcludedApplications]), (Names{"alpha", "Beta"}));

    // The reloads rebuild what a tab stored since, without saving.
    int saves = domains.synchronizations;
    prefs.setArray(Array{app("/c/Zulu.app"), app("/c/Echo.app")}, keys::SwitchMenuExcludedApplications);
    prefs.setArray(Array{userGroup("Only")}, keys::Groups);
    prefs.reloadExcludedApplications();
    prefs.reloadGroups();
    EXPECT_EQ(namesOf(prefs.prefsData()[keys::SwitchMenuExcludedApplications]), (Names{"Echo", "Zulu"}));
    EXPECT_EQ(namesOf(prefs.prefsData()[keys::Groups]), (Names{"Excluded Applications", "Only"}));
    EXPECT_EQ(domains.synchronizations, saves);
    EXPECT_TRUE(bus.posted().empty());
}
