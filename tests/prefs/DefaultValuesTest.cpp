#include <gtest/gtest.h>

#include <cstdlib>

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
    // The defaults are built on first use, so the check needs a process in which nothing has
    // used them yet: the "threadsafe" style runs it in a fresh run of this program.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setMainScreenWidthSource([] { return 1920.0; });
            const Dictionary& first = defaultValues();
            Dictionary snapshot = first.deepCopy();
            setMainScreenWidthSource([] { return 800.0; });
            const Dictionary& second = defaultValues();
            // The preview sizes are the screen's row of a table; 1920 starts a row of its own.
            const Real* artwork = first[keys::ArtworkMaxSize].real();
            bool ok = first.isSameObject(second) && second == snapshot && artwork && artwork->is32Bit &&
                      artwork->value == 240 && artworkSizeForScreenWidth(1919) == 200;
            std::exit(ok ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

// The values themselves are checked on a fresh domain by the command-line test; these are the
// widths the controller reads, which a file does not keep.
TEST(DefaultValues, WidthsAreThoseTheControllerReads) {
    const Dictionary& d = defaultValues();
    EXPECT_EQ(widthOf(d[keys::CheckForUpdatesResult]), IntWidth::Int32);
    EXPECT_TRUE(d[keys::PanelCoordinate].real()->is32Bit);
    ASSERT_EQ(d[keys::HotKeys].array() ? d[keys::HotKeys].array()->size() : 0, 4u);
    for (const Value& record : plist::asArray(d[keys::HotKeys]).value_or(Array())) {
        ASSERT_TRUE(record.dictionary());
        EXPECT_EQ(record.dictionary()->size(), 4u);
        EXPECT_EQ(widthOf(record[keys::Character]), IntWidth::UInt8);
        EXPECT_EQ(widthOf(record[keys::Modifiers]), IntWidth::UInt32);
        EXPECT_EQ(widthOf(record[keys::VirtualKeyCode]), IntWidth::UInt16);
        EXPECT_EQ(widthOf(record[keys::Position]), IntWidth::Int32);
    }
    for (const char* key : {keys::PanelButtons, keys::StatusItemButtons})
        for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(widthOf(d[key][i][keys::Color]), IntWidth::Int16) << key << i;
}
