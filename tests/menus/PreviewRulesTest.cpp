#include <gtest/gtest.h>

#include "menus/ConfigurePreviewsController.h"
#include "menus/KVExtensionFormatter.h"

using namespace corvalis;
using Strings = std::vector<std::string>;

TEST(PreviewRules, SlidersSnapToRoundNumbers) {
    const std::pair<double, int> cases[] = {{299.0, 300}, {299.9, 300}, {199.4, 200}, {250.7, 250}, {109.0, 110}, {100.0, 100}};
    for (const auto& [value, snapped] : cases) EXPECT_EQ(ConfigurePreviewsController::snappedSize(value), snapped) << value;
}

TEST(PreviewRules, ExtensionTextBecomesASortedListWithoutRepeats) {
    const std::pair<std::string, Strings> cases[] = {
        {"png, jpg. png gif", {"gif", "jpg", "png"}},
        {"", {}},
        {" , . ", {}},
        {"zip file10 file9", {"file9", "file10", "zip"}},  // digits compare as numbers
    };
    for (const auto& [text, extensions] : cases) EXPECT_EQ(ConfigurePreviewsController::extensionsFromText(text), extensions) << text;
}

TEST(PreviewRules, ExtensionFormatterRefusesWhatNoExtensionHolds) {
    KVExtensionFormatter unlimited, short4(4);
    struct Case { std::string typed; bool valid; std::string cleaned; };
    const Case cases[] = {{"PNG,\tJpg\r\nGIF", true, "png, jpg gif"}, {"a/b", false, ""}, {"é", false, ""},
                          {"(x)+y~z^", true, "(x)+y~z^"}, {"", true, ""}};
    for (const Case& c : cases) {
        std::string cleaned;
        EXPECT_EQ(unlimited.isPartialStringValid(c.typed, &cleaned), c.valid) << c.typed;
        if (c.valid && !c.typed.empty()) {
            EXPECT_EQ(cleaned, c.cleaned) << c.typed;
        }
        EXPECT_EQ(unlimited.getObjectValue(c.typed).has_value(), c.valid) << c.typed;
    }
    EXPECT_TRUE(short4.isPartialStringValid("abcd", nullptr));
    EXPECT_FALSE(short4.isPartialStringValid("abcde", nullptr));
    EXPECT_FALSE(short4.getObjectValue("abcde"));
}
