#include "prefs/DefaultValues.h"
#include "support/PrefsFixture.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

Dictionary hotKey(long long character, long long modifiers, long long keyCode, Value position) {
    Dictionary record{{keys::Character, Value::int64(character)},
                      {keys::Modifiers, Value::int64(modifiers)},
                      {keys::VirtualKeyCode, Value::int64(keyCode)}};
    if (!position.isAbsent()) record.set(keys::Position, position);
    return record;
}

Array fourHotKeys() {
    return Array{hotKey(97, 256, 0, Value::int32(1)), hotKey(98, 256, 11, Value::int32(2)),
                 hotKey(99, 768, 8, Value::int32(3)), hotKey(100, 256, 2, Value::int32(5))};
}

class ShortcutLoaders : public test::PrefsTest {};

}  // namespace

TEST_F(ShortcutLoaders, HotKeysThatCannotAllWorkReturnToTheFactoryKeys) {
    const Value& factory = defaultValues()[keys::HotKeys];
    EXPECT_EQ(load(Dictionary{{keys::HotKeys, fourHotKeys()}})[keys::HotKeys], Value(fourHotKeys()));

    Array clash = fourHotKeys();
    // Same key and modifiers once truncated to the widths the controller reads.
    clash.set(3, hotKey(120, 256 + (1LL << 32), 11 + 65536, Value::int32(0)));
    EXPECT_EQ(load(Dictionary{{keys::HotKeys, clash}})[keys::HotKeys], factory);

    for (Value broken : {Value(Array()), Value(Array{hotKey(97, 256, 0, Value::int32(0))}), Value("HotKeys"),
                         Value(Array{fourHotKeys()[0], fourHotKeys()[1], fourHotKeys()[2], Value::int32(4)}),
                         Value(Array{fourHotKeys()[0], fourHotKeys()[1], fourHotKeys()[2],
                                     Dictionary{{keys::Character, Value::int32(1)}, {keys::Modifiers, "x"},
                                                {keys::VirtualKeyCode, Value::int32(3)}}})})
        EXPECT_EQ(load(Dictionary{{keys::HotKeys, broken}})[keys::HotKeys], factory);
}

TEST_F(ShortcutLoaders, HotKeyPositionsOutsideTheRangeBecomeZero) {
    Array stored = fourHotKeys();
    stored.set(0, hotKey(97, 256, 0, Value::int32(6)));
    stored.set(1, hotKey(98, 256, 11, Value()));
    stored.set(2, hotKey(99, 768, 8, Value("3")));
    stored.set(3, hotKey(100, 256, 2, Value::int32(-1)));
    Value loaded = load(Dictionary{{keys::HotKeys, stored}})[keys::HotKeys];
    EXPECT_EQ(loaded, Value(Array{hotKey(97, 256, 0, Value::int32(0)), hotKey(98, 256, 11, Value::int32(0)),
                                  hotKey(99, 768, 8, Value::int32(0)), hotKey(100, 256, 2, Value::int32(0))}));
}

TEST_F(ShortcutLoaders, KeyboardShortcutsHoldExactlyTheEighteenCommands) {
    Dictionary stored{{"999", Dictionary{{keys::Enabled, true}}},
                      {"1003", Dictionary{{keys::Enabled, true}, {keys::Action, Value::int32(1)}}},
                      {"1004", "not a record"},
                      {"2000", Dictionary()}};
    Dictionary loaded = load(Dictionary{{keys::KeyboardShortcuts, stored},
                                        {keys::ToggleSingleApplicationModeHotKey,
                                         Dictionary{{keys::Character, Value::int32(116)}}}});
    const Value& shortcuts = loaded[keys::KeyboardShortcuts];
    ASSERT_EQ(shortcuts.dictionary() ? shortcuts.dictionary()->size() : 0, 18u);
    for (int id = 1000; id <= 1017; ++id) {
        Value expected = id == 1003 ? Value(Dictionary{{keys::Enabled, true}, {keys::Action, Value::int32(1)}})
                                    : Value(Dictionary{{keys::Enabled, false}});
        EXPECT_EQ(shortcuts[std::to_string(id)], expected) << id;
    }
    EXPECT_FALSE(loaded.contains(keys::ToggleSingleApplicationModeHotKey)) << "removed even when not used";
}

TEST_F(ShortcutLoaders, TheOlderSingleApplicationModeHotKeyBecomesItsShortcut) {
    Dictionary loaded = load(Dictionary{
        {keys::ToggleSingleApplicationModeHotKey,
         Dictionary{{keys::Character, Value::int32(116)}, {keys::Modifiers, "x"}, {"Other", true}}}});
    EXPECT_EQ(loaded[keys::KeyboardShortcuts]["1009"],
              Value(Dictionary{{keys::Character, Value::int32(116)}, {keys::Enabled, true}}));
    EXPECT_FALSE(loaded.contains(keys::ToggleSingleApplicationModeHotKey));
}
