#include <gtest/gtest.h>

#include "platform/MainScreen.h"
#include "prefs/DefaultPreviewSizes.h"
#include "prefs/DefaultValues.h"
#include "prefs/PreferenceKeys.h"

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
    EXPECT_TRUE(first[keys::ArtworkMaxSize].real()->is32Bit);
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

// The rows are the sizes table; what is checked is that each boundary width belongs to the row above it.
TEST(DefaultPreviewSizes, EachWidthBoundaryPicksItsRow) {
    struct Row {
        double width;
        float artwork, image, movie, other;
    };
    const Row rows[] = {{799, 100, 150, 200, 200}, {800, 100, 200, 200, 200}, {1919, 200, 400, 300, 400},
                        {1920, 240, 400, 360, 450}, {5120, 300, 480, 360, 500}};
    for (const Row& row : rows) {
        EXPECT_EQ(artworkSizeForScreenWidth(row.width), row.artwork) << row.width;
        EXPECT_EQ(imageSizeForScreenWidth(row.width), row.image) << row.width;
        EXPECT_EQ(movieSizeForScreenWidth(row.width), row.movie) << row.width;
        EXPECT_EQ(otherFileSizeForScreenWidth(row.width), row.other) << row.width;
    }
    setMainScreenWidthSource([] { return 1344.0; });
    EXPECT_EQ(PDFDefaultSize(), 320);
    EXPECT_EQ(TextFileDefaultSize(), 320);
    setMainScreenWidthSource(nullptr);
    EXPECT_EQ(MovieDefaultSize(), 200);  // no screen
}
