#include "pane/UpdatesController.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "schema/PreferenceKeys.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::test;
using plist::Date, plist::Dictionary, plist::Value;

namespace {

// 2026-11-22 22:48:00 UTC, in seconds since 2001.
constexpr double kSunday = 817080480.0;

class RecordingView : public UpdatesView {
public:
    std::optional<bool> checked;
    std::optional<int> frequency;
    std::optional<bool> frequencyEnabled;
    std::vector<UpdateTexts> texts;
    std::vector<std::pair<std::chrono::milliseconds, std::function<void()>>> later;

    void setAutomaticallyCheckForUpdates(bool value) override { checked = value; }
    void selectCheckFrequency(int days) override { frequency = days; }
    void setCheckFrequencyEnabled(bool enabled) override { frequencyEnabled = enabled; }
    void setLastCheckAndResult(const UpdateTexts& value) override { texts.push_back(value); }
    void showSoftwareUpdateSheet(const UpdateSheetState&) override {}
    void runLater(std::chrono::milliseconds delay, std::function<void()> action) override {
        later.emplace_back(delay, std::move(action));
    }
};

class UpdatesControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        prefs.loadPreferences();
        updates.setDateFormatter([](const Date& date) { return "DATE(" + std::to_string(static_cast<long>(date.seconds)) + ")"; });
    }

    // The outcome as the controller stores it; the pane has not saved since.
    void stored(int code, std::optional<std::string> newVersion = std::nullopt) {
        prefs.setInt(code, keys::CheckForUpdatesResult);
        prefs.setObject(Date{kSunday}, keys::CheckForUpdatesLast);
        if (newVersion) prefs.setString(*newVersion, keys::CheckForUpdatesNewVersion);
    }
    std::string domainOnDisk() { return readFile(domains.pathForDomain("com.kestrova.Corvalis")); }

    TempDir tmp;
    FileDomainStore domains{tmp / "prefs"};
    InProcessNotificationCenter distributed;
    CorvalisPreferences prefs{domains, distributed};
    RecordingView view;
    UpdatesController updates{prefs, distributed, view};
};

TEST_F(UpdatesControllerTest, EveryOutcomeHasItsDateLineAndResultLine) {
    const std::string date = "DATE(817080480)";
    struct Case {
        int code;
        UpdateTexts texts;
    } cases[] = {
        {-5, {"Last check: never", ""}},
        {1, {"Last check: " + date, "Version 2.5 is available."}},
        {-3, {"Last attempt: " + date, "The update server could not be reached."}},
        {7, {"Last attempt: " + date, ""}},  // an unknown code
    };
    for (const Case& c : cases) {
        stored(c.code, "2.5");
        EXPECT_EQ(updates._fillLastCheckAndResult(), c.texts) << "code " << c.code;
        EXPECT_EQ(view.texts.back(), c.texts) << "code " << c.code;
    }
    // An outcome without a stored time says so instead of showing an empty date.
    prefs.removeObjectForKey(keys::CheckForUpdatesLast);
    prefs.setInt(-1, keys::CheckForUpdatesResult);
    EXPECT_EQ(updates._fillLastCheckAndResult().lastCheck, "Last attempt: never");
}

TEST(UpdateCheckDate, FullDateAndShortTimeInTheLocaleAndTheSystemTimeZone) {
    ScopedEnv zone("TZ", "Asia/Tokyo");
    ::tzset();
    EXPECT_EQ(formatUpdateCheckDate(Date{kSunday}, QLocale("de_DE")), "Montag, 23. November 2026 07:48");
    for (double unreadable : {std::numeric_limits<double>::quiet_NaN(), 1e300})
        EXPECT_EQ(formatUpdateCheckDate(Date{unreadable}, QLocale("de_DE")), "");
}

TEST_F(UpdatesControllerTest, TheControllersAnswerIsCopiedOrRemovedWithoutSaving) {
    stored(1, "2.5");
    prefs.setString("2.4", keys::CheckForUpdatesSkipVersion);
    prefs.saveToDefaults();
    const std::string onDisk = domainOnDisk();
    updates.initializeSoftwareUpdate(true);
    std::size_t refreshes = view.texts.size();

    // Removals alone change the values but not the texts.
    distributed.post({"CheckForUpdatesChanged", "com.kestrova.Corvalis.Controller",
                      Dictionary{{"RemoveCheckForUpdatesNewVersion", true}, {"RemoveCheckForUpdatesSkipVersion", true}}});
    EXPECT_FALSE(prefs.prefsData().contains(keys::CheckForUpdatesNewVersion));
    EXPECT_FALSE(prefs.prefsData().contains(keys::CheckForUpdatesSkipVersion));
    EXPECT_TRUE(prefs.prefsData().contains(keys::CheckForUpdatesLast));
    EXPECT_EQ(view.texts.size(), refreshes);

    // A value wins over its removal; an outcome refreshes the texts.
    distributed.post({"CheckForUpdatesChanged", "com.kestrova.Corvalis.Controller",
                      Dictionary{{"CheckForUpdatesLast", Date{kSunday + 60}}, {"RemoveCheckForUpdatesLast", true},
                                 {"CheckForUpdatesNewVersion", "3.0"}, {"CheckForUpdatesResult", Value::int32(1)}}});
    EXPECT_EQ(prefs.prefsData()[keys::CheckForUpdatesLast].date(), Date{kSunday + 60});
    ASSERT_EQ(view.texts.size(), refreshes + 1);
    EXPECT_EQ(view.texts.back(), (UpdateTexts{"Last check: DATE(817080540)", "Version 3.0 is available."}));

    distributed.post({"CheckForUpdatesChanged", "com.kestrova.Corvalis.Controller",
                      Dictionary{{"RemoveCheckForUpdatesLast", true}, {"CheckForUpdatesResult", Value::int32(-5)}}});
    EXPECT_FALSE(prefs.prefsData().contains(keys::CheckForUpdatesLast));
    EXPECT_EQ(view.texts.back(), (UpdateTexts{"Last check: never", ""}));

    // Only the controller's notifications count, and nothing was written.
    distributed.post({"CheckForUpdatesChanged", "com.kestrova.Corvalis", Dictionary{{"RemoveCheckForUpdatesLast", true}}});
    distributed.post({"CheckForUpdatesChanged", "com.kestrova.Corvalis.Controller", std::nullopt});
    EXPECT_EQ(view.texts.size(), refreshes + 2);
    EXPECT_EQ(domainOnDisk(), onDisk);
}

TEST_F(UpdatesControllerTest, SettingsChangesAreSentToTheControllerAndSaved) {
    updates.initializeSoftwareUpdate(true);
    EXPECT_TRUE(view.checked == false && view.frequency == 7 && view.frequencyEnabled == false);
    distributed.clearPosted();

    updates.onAutomaticallyCheckForUpdates(true);
    updates.onCheckFrequency(30);
    updates.onCheckFrequency(14);  // no such item
    const auto& posted = distributed.posted();
    ASSERT_EQ(posted.size(), 2u);
    EXPECT_EQ(posted[0].name, "CorvalisPaneChangedPrefs");
    EXPECT_EQ(posted[0].userInfo, (Dictionary{{"CheckForUpdates", true}}));
    EXPECT_EQ(posted[1].userInfo, (Dictionary{{"CheckForUpdatesFrequency", Value::int32(30)}}));
    auto saved = domains.persistentDomainForName("com.kestrova.Corvalis");
    ASSERT_TRUE(saved);
    EXPECT_EQ((*saved)["CheckForUpdates"], Value(true));
    EXPECT_EQ((*saved)["CheckForUpdatesFrequency"], Value::int32(30));
}

TEST_F(UpdatesControllerTest, AFormatChangeRefreshesTheTextsASecondLaterWhileTheControllerLives) {
    std::vector<std::pair<std::chrono::milliseconds, std::function<void()>>> later;
    {
        RecordingView otherView;
        UpdatesController shortLived(prefs, distributed, otherView);
        shortLived.onCheckForUpdatesFormatChanged();
        ASSERT_EQ(otherView.later.size(), 1u);
        EXPECT_EQ(otherView.later[0].first, std::chrono::seconds(1));
        EXPECT_TRUE(otherView.texts.empty());
        otherView.later[0].second();
        EXPECT_EQ(otherView.texts.size(), 1u);
        shortLived.onCheckForUpdatesFormatChanged();
        later = std::move(otherView.later);
    }
    later.back().second();  // its controller is gone: nothing happens
}

}  // namespace
