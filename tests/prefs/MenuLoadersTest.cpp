#include "support/PrefsFixture.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

using Kinds = std::vector<std::string>;

Dictionary item(const char* kind) { return Dictionary{{keys::Item, kind}}; }
Dictionary separator() { return item("Separator"); }

class MenuLoaders : public test::PrefsTest {};

}  // namespace

// The factory menus are the defaults table; what is tested is the part that follows the machine.
TEST_F(MenuLoaders, FactoryMenusFollowTheMachine) {
    prefs.setLoadEnvironment(machine);
    // Without address book and photo libraries their section vanishes with its separators.
    Kinds bare = kinds(prefs.defaultSpecialMenu());
    EXPECT_EQ(Kinds(bare.begin() + 5, bare.begin() + 8), (Kinds{"RecentServers", "Separator", "SystemMemory"}));

    machine.developerApplicationsFolderExists = [] { return true; };
    machine.iPhotoLibraryAvailable = [] { return true; };
    prefs.setLoadEnvironment(machine);
    EXPECT_EQ(kinds(prefs.defaultOpenMenu())[6], "DeveloperApplicationsFolder");
    Kinds special = kinds(prefs.defaultSpecialMenu());
    EXPECT_EQ(Kinds(special.begin() + 5, special.begin() + 10),
              (Kinds{"RecentServers", "Separator", "iPhotoLibrary", "Separator", "SystemMemory"}));
}

TEST_F(MenuLoaders, StoredMenusDropUnknownKindsAndStraySeparators) {
    Dictionary loaded = load(Dictionary{
        {keys::OpenMenuItems, Array{separator(), item("Groups"), separator(), separator(), item("Teleport"),
                                    separator()}},
        {keys::BrowserShowWhat, Value::int32(2)},
        {keys::ShowDockApplications, false},
        {keys::QuitMenuItems, Array{item("QuitAll"), Value::int32(7), Dictionary{{keys::Item, Value::int32(3)}},
                                    item("ShowAll"), separator()}},
        {keys::SwitchMenuItems, Array{item("ShowAll"), separator(), item("QuitAll"), separator(), item("Groups")}},
        {keys::SpecialMenuItems, Array{item("Home"), item("Library")}},
    });
    EXPECT_EQ(kinds(loaded[keys::OpenMenuItems]), Kinds{"Groups"});
    EXPECT_FALSE(loaded.contains(keys::BrowserShowWhat)) << "the menu shrank";
    EXPECT_FALSE(loaded.contains(keys::ShowDockApplications));
    EXPECT_EQ(kinds(loaded[keys::QuitMenuItems]), Kinds{"QuitAll"});
    EXPECT_EQ(kinds(loaded[keys::SwitchMenuItems]), (Kinds{"ShowAll", "Separator", "Groups"}));
    EXPECT_EQ(kinds(loaded[keys::SpecialMenuItems]), (Kinds{"Home", "Library"}));  // the host is past 10.7

    // A menu that keeps every record keeps the browser's setting; the developer item needs its folder.
    loaded = load(Dictionary{{keys::OpenMenuItems, Array{item("Groups"), item("SystemPreferences")}},
                             {keys::BrowserShowWhat, Value::int32(2)}});
    EXPECT_EQ(loaded[keys::BrowserShowWhat], Value::int32(2));
    loaded = load(Dictionary{{keys::OpenMenuItems, Array{item("DeveloperApplicationsFolder"), item("Groups")}}});
    EXPECT_EQ(kinds(loaded[keys::OpenMenuItems]), Kinds{"Groups"});
}

TEST_F(MenuLoaders, StoredEmptyMenusStayEmptyAndCountAsNotBuilt) {
    bool firstUse = true;
    Dictionary loaded = load(Dictionary{{keys::QuitMenuItems, Array()}}, &firstUse);
    EXPECT_TRUE(loaded[keys::QuitMenuItems].array()->empty());
    EXPECT_FALSE(firstUse);
    EXPECT_FALSE(prefs._loadQuitMenuItems(true));
    EXPECT_TRUE(prefs.arrayForKey(keys::QuitMenuItems)->empty());
}

TEST_F(MenuLoaders, FolderNamesFollowTheirFolderUnlessTheUserNamedThem) {
    Dictionary loaded = load(Dictionary{
        {keys::OpenMenuItems,
         Array{Dictionary{{keys::Item, "Folder"}, {keys::Path, "/opt/Tools"}, {keys::Name, "Mine"},
                          {keys::NameIsCustom, true}, {keys::Depth, Value::int32(2)}},
               Dictionary{{keys::Item, "Folder"}, {keys::Path, "/opt/Stuff"}, {keys::Name, "Old"}},
               Dictionary{{keys::Item, "Folder"}, {keys::Path, Value::int32(4)}, {keys::Name, "Kept"},
                          {keys::AliasData, "not data"}, {keys::Depth, "deep"}}}},
        {keys::SpecialMenuItems, Array{Dictionary{{keys::Item, "Folder"}, {keys::Path, "/opt/Docs"},
                                                  {keys::Name, "Renamed"}, {keys::NameIsCustom, true}}}},
    });
    Value open = loaded[keys::OpenMenuItems];
    EXPECT_EQ(record(open, 0)[keys::Name], Value("Mine"));
    EXPECT_EQ(record(open, 0)[keys::Depth], Value::int32(2));
    EXPECT_EQ(record(open, 1)[keys::Name], Value("Stuff"));
    // Fields of the wrong type are dropped; the record itself stays for the user to fix.
    EXPECT_EQ(record(open, 2), (Dictionary{{keys::Item, "Folder"}, {keys::Name, "Kept"}}));
    EXPECT_EQ(record(loaded[keys::SpecialMenuItems], 0)[keys::Name], Value("Docs"));
}

TEST_F(MenuLoaders, OpenMenuMigratesTheOlderSwitchesAndFolders) {
    machine.developerApplicationsFolderExists = [] { return true; };
    Dictionary loaded = load(Dictionary{
        {keys::ShowRecentApplications, false},
        {keys::ShowDeveloperApplicationsFolder, "no"},  // not a boolean: the factory setting applies
        {keys::ShowSystemPreferences, false},
        {keys::Folders, Array{Dictionary{{keys::Name, "Work"}, {keys::Path, "/srv/projects"},
                                         {keys::Depth, Value::int32(3)}, {keys::BrowserDepth, Value::int32(1)}},
                              Dictionary{{keys::Name, "tmp"}, {keys::Path, "/tmp"}}, Value::int32(5),
                              Dictionary{{keys::Name, "no path"}}}},
        {keys::BrowserShowWhat, Value::int32(1)},
    });
    Value open = loaded[keys::OpenMenuItems];
    EXPECT_EQ(kinds(open), (Kinds{"Groups", "Separator", "DockApplications", "Separator", "ApplicationsFolder",
                                  "DeveloperApplicationsFolder", "Separator", "Folder", "Folder"}));
    EXPECT_EQ(record(open, 7), (Dictionary{{keys::Item, "Folder"},
                                           {keys::Name, "Work"},
                                           {keys::Path, "/srv/projects"},
                                           {keys::NameIsCustom, true},
                                           {keys::Depth, Value::int32(3)},
                                           {keys::BrowserDepth, Value::int32(1)}}));
    EXPECT_EQ(record(open, 8)[keys::NameIsCustom], Value(false));
    EXPECT_FALSE(loaded.contains(keys::Folders) || loaded.contains(keys::ShowRecentApplications));
}

TEST_F(MenuLoaders, SpecialMenuMigration) {
    Dictionary loaded = load(Dictionary{{keys::ShowSleepRestartShutDown, false},
                                        {keys::ShowLogOut, false},
                                        {keys::ShowHome, false},
                                        {keys::ShowQuitAndLaunchFinder, true}});
    EXPECT_EQ(kinds(loaded[keys::SpecialMenuItems]),
              (Kinds{"Volumes", "Separator", "RecentFolders", "RecentDocuments", "RecentServers", "Separator",
                     "SystemMemory", "Uptime", "Separator", "QuitLaunchFinder", "RelaunchDock", "Separator",
                     "LoginWindow"}));
    EXPECT_FALSE(loaded.contains(keys::ShowHome) || loaded.contains(keys::ShowDisks));

    machine.addressBookInstalled = [] { return true; };
    machine.apertureLibraryAvailable = [] { return true; };
    Kinds special = kinds(load(Dictionary{{keys::ShowRelaunchOrQuitAndLaunchFinder, false}})[keys::SpecialMenuItems]);
    EXPECT_EQ(Kinds(special.begin() + 7, special.begin() + 14),
              (Kinds{"AddressBook", "ApertureLibrary", "Separator", "SystemMemory", "Uptime", "Separator",
                     "RelaunchDock"}));
}

TEST_F(MenuLoaders, QuitAndSwitchMenusMigrateTheirAdditions) {
    Dictionary excludedWithApp{{keys::Name, "x"},
                               {keys::CanBeDeleted, false},
                               {keys::Applications, Array{Dictionary{{keys::Path, "/opt/A.app"}}}}};
    bool firstUse = false;
    Dictionary loaded = load(Dictionary{{keys::Groups, Array{excludedWithApp}},
                                        {keys::AddExcludedApplications, true},
                                        {keys::AddBackgroundOnlyApplications, true},
                                        {keys::AddActiveApplicationWindows, true},
                                        {keys::ShowSingleApplicationModeCommand, true}},
                             &firstUse);
    EXPECT_TRUE(firstUse);
    EXPECT_EQ(kinds(loaded[keys::QuitMenuItems]),
              (Kinds{"RunningApplications", "Separator", "QuitOthers", "QuitAll", "Separator", "Groups",
                     "Separator", "ExcludedApplications", "BackgroundOnlyApplications"}));
    EXPECT_EQ(kinds(loaded[keys::SwitchMenuItems]),
              (Kinds{"ActiveApplicationWindows", "Separator", "RunningApplications", "Separator", "SwitchToPrevious",
                     "HideOthers", "ShowAll", "Separator", "Groups", "Separator", "ToggleSingleApplicationMode"}));
    EXPECT_FALSE(loaded.contains(keys::AddExcludedApplications) || loaded.contains(keys::AddActiveApplicationWindows));

    // The switches go in the normalising branch too, and a menu of the wrong type is built anew.
    loaded = load(Dictionary{{keys::QuitMenuItems, "QuitAll"},
                             {keys::SwitchMenuItems, Array{item("Groups")}},
                             {keys::ShowSingleApplicationModeCommand, true}});
    EXPECT_EQ(kinds(loaded[keys::QuitMenuItems]),
              (Kinds{"RunningApplications", "Separator", "QuitOthers", "QuitAll", "Separator", "Groups"}));
    EXPECT_FALSE(loaded.contains(keys::ShowSingleApplicationModeCommand));
}
