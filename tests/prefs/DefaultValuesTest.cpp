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
    EXPECT_EQ(first.size(), 110u);
}

TEST(DefaultValues, TypesAndWidthsAreThoseTheControllerReads) {
    const Dictionary& d = defaultValues();
    EXPECT_EQ(d[keys::TurnOnCorvalis].toBool(), false);
    EXPECT_EQ(widthOf(d[keys::CheckForUpdatesResult]), IntWidth::Int32);
    EXPECT_EQ(d[keys::CheckForUpdatesResult].intValue(), -5);
    EXPECT_TRUE(d[keys::PanelCoordinate].real()->is32Bit);
    EXPECT_EQ(*d[keys::QuickCopyPathCommand].string(), "1666215027");
    EXPECT_EQ(*d[keys::LastCopyPathCommand].string(), "1666207832");
    EXPECT_EQ(*d[keys::AddApplicationPath].string(), "/Applications");

    Array hotKeys = *d[keys::HotKeys].array();
    ASSERT_EQ(hotKeys.size(), 4u);
    const int characters[] = {'o', 'q', 's', 'e'};
    for (std::size_t i = 0; i < 4; ++i) {
        Dictionary hotKey = *hotKeys[i].dictionary();
        EXPECT_EQ(hotKey.size(), 4u);
        EXPECT_EQ(widthOf(hotKey[keys::Character]), IntWidth::UInt8);
        EXPECT_EQ(hotKey[keys::Character].intValue(), characters[i]);
        EXPECT_EQ(widthOf(hotKey[keys::Modifiers]), IntWidth::UInt32);
        EXPECT_EQ(hotKey[keys::Modifiers].intValue(), 0x1200);
        EXPECT_EQ(widthOf(hotKey[keys::VirtualKeyCode]), IntWidth::UInt16);
        EXPECT_EQ(hotKey[keys::VirtualKeyCode].intValue(), 1018 + static_cast<int>(i));
        EXPECT_EQ(widthOf(hotKey[keys::Position]), IntWidth::Int32);
    }
    for (const char* key : {keys::PanelButtons, keys::StatusItemButtons}) {
        Array buttons = *d[key].array();
        ASSERT_EQ(buttons.size(), 4u);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(widthOf((*buttons[i].dictionary())[keys::Color]), IntWidth::Int16);
            EXPECT_EQ((*buttons[i].dictionary())[keys::Color].intValue(), static_cast<int>(i));
            EXPECT_EQ((*buttons[i].dictionary())[keys::Visible].toBool(), true);
        }
    }
    Array groups = *d[keys::Groups].array();
    ASSERT_EQ(groups.size(), 1u);
    Dictionary excluded = *groups[0].dictionary();
    EXPECT_EQ(*excluded[keys::Name].string(), "ExcludedApplications");
    EXPECT_EQ(excluded[keys::CanBeDeleted].toBool(), false);
    EXPECT_TRUE(excluded[keys::Applications].array()->empty());
}

TEST(DefaultPreviewSizes, EachWidthBoundaryPicksItsRow) {
    struct Row {
        double width;
        float artwork, image, movie, other;
    };
    const Row rows[] = {
        {0, 100, 150, 200, 200},      {799, 100, 150, 200, 200},    {800, 100, 200, 200, 200},
        {1024, 120, 240, 200, 240},   {1280, 150, 300, 240, 300},   {1344, 160, 320, 240, 320},
        {1600, 200, 400, 300, 400},   {1919, 200, 400, 300, 400},   {1920, 240, 400, 360, 450},
        {2560, 300, 480, 360, 500},   {5120, 300, 480, 360, 500},
    };
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
