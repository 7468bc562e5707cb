#include <gtest/gtest.h>

#include "platform/MainScreen.h"
#include "prefs/DefaultPreviewSizes.h"
#include "prefs/DefaultValues.h"
#include "schema/PreferenceKeys.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {
IntWidth widthOf(const Value& value) { return value.integer() ? value.integer()->width : IntWidth::Int64; }
}  // namespace

TEST(DefaultValues, BuiltOnceWhateverTheScreenDoesLater) {
    // Each test runs in a process of its own under ctest, so this is the first build here.
    setMainScreenWidthSource([] { return 1920.0; });
    const Dictionary& first = defaultValues();
    Dictionary snapshot = first.deepCopy();
    setMainScreenWidthSource([] { return 800.0; });
    const Dictionary& second = defaultValues();
    setMainScreenWidthSource(nullptr);
    EXPECT_TRUE(first.isSameObject(second));
    EXPECT_EQ(second, snapshot);
    // The preview sizes are the screen's row of a table; 1920 starts a row of its own.
    EXPECT_TRUE(first[keys::ArtworkMaxSize].real()->is32Bit);
    EXPECT_EQ(first[keys::ArtworkMaxSize].toDouble(), 240);
    EXPECT_EQ(artworkSizeForScreenWidth(1919), 200);
}

// The values themselves are checked on a fresh domain by the command-line test; these are the
// widths the controller reads, which a file does not keep.
TEST(DefaultValues, WidthsAreThoseTheControllerReads) {
    const Dictionary& d = defaultValues();
    EXPECT_EQ(widthOf(d[keys::CheckForUpdatesResult]), IntWidth::Int32);
    EXPECT_TRUE(d[keys::PanelCoordinate].real()->is32Bit);
    for (const Value& hotKey : *d[keys::HotKeys].array()) {
        Dictionary record = *hotKey.dictionary();
        EXPECT_EQ(record.size(), 4u);
        EXPECT_EQ(widthOf(record[keys::Character]), IntWidth::UInt8);
        EXPECT_EQ(widthOf(record[keys::Modifiers]), IntWidth::UInt32);
        EXPECT_EQ(widthOf(record[keys::VirtualKeyCode]), IntWidth::UInt16);
        EXPECT_EQ(widthOf(record[keys::Position]), IntWidth::Int32);
    }
    for (const char* key : {keys::PanelButtons, keys::StatusItemButtons})
        for (const Value& button : *d[key].array()) EXPECT_EQ(widthOf((*button.dictionary())[keys::Color]), IntWidth::Int16);
}
