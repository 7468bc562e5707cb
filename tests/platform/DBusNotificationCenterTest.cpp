#include "platform/linux/DBusNotificationCenter.h"

#include <QDBusMessage>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>

#include "platform/linux/BusProtocol.h"
#include "plist/PlistIO.h"
#include "support/IntegrationSupport.h"

using namespace corvalis;
using corvalis::test::application, corvalis::test::waitUntil;
using plist::Array, plist::Data, plist::Dictionary, plist::Value;

namespace {

QDBusConnection newConnection() {
    static int count = 0;
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("test-%1").arg(++count));
}

class DBusNotificationCenterTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { application(); }

    NotificationCenter::Observer recordInto(std::vector<Notification>& log) {
        return [&log](const Notification& n) { log.push_back(n); };
    }
    void sendRaw(const QVariantList& args, const char* interface = bus::kNotificationInterface) {
        QDBusMessage m = QDBusMessage::createSignal(bus::kNotificationPath, interface, bus::kNotificationMember);
        m.setArguments(args);
        ASSERT_TRUE(posterBus.send(m));
    }

    QDBusConnection posterBus = newConnection();
    DBusNotificationCenter poster{posterBus};
    DBusNotificationCenter listener{newConnection()};
    std::vector<Notification> all;
};

TEST_F(DBusNotificationCenterTest, PostsArriveEverywhereWithNameObjectAndUserInfo) {
    Dictionary info{{"title", "Ünïcode"}, {"count", Value::int32(-7)}, {"on", true}, {"bytes", Data{0, 1, 255}},
                    {"list", Array{"a", Value::int64(1), Dictionary{{"inner", false}, {"empty", Array{}}}}}};
    std::vector<Notification> own;
    listener.addObserver("", "", recordInto(all));
    poster.addObserver("", "", recordInto(own));
    ASSERT_TRUE(poster.isConnected());
    poster.post({"com.kestrova.Changed", "com.kestrova.corvalis", info});
    poster.post({"none", "", std::nullopt});
    poster.post({"empty", "", Dictionary{}});
    ASSERT_TRUE(waitUntil([&] { return all.size() == 3 && own.size() == 3; }));
    EXPECT_EQ(all[0].name + " " + all[0].object, "com.kestrova.Changed com.kestrova.corvalis");
    EXPECT_EQ(all[0].userInfo, info);
    EXPECT_EQ(own[0].userInfo, info);
    EXPECT_FALSE(all[1].userInfo);
    EXPECT_EQ(all[2].userInfo, Dictionary{});  // an empty dictionary is not "none"
}

TEST_F(DBusNotificationCenterTest, ObserversGetMatchingPostsWhileRegistered) {
    std::vector<Notification> byName, byObject, byBoth, removedMeanwhile;
    NotificationCenter::Token later = 0;
    NotificationCenter::Token token = listener.addObserver("A", "", recordInto(byName));
    listener.addObserver("", "o1", recordInto(byObject));
    listener.addObserver("A", "o1", recordInto(byBoth));
    listener.addObserver("B", "", [&](const Notification&) { listener.removeObserver(later); });
    later = listener.addObserver("B", "", recordInto(removedMeanwhile));
    listener.addObserver("", "", recordInto(all));
    for (auto [name, object] : {std::pair{"A", "o2"}, {"B", "o1"}, {"A", "o1"}}) poster.post({name, object, {}});
    ASSERT_TRUE(waitUntil([&] { return all.size() == 3; }));
    listener.removeObserver(token);
    poster.post({"A", "", {}});
    ASSERT_TRUE(waitUntil([&] { return all.size() == 4; }));
    EXPECT_EQ(byName.size(), 2u);
    EXPECT_EQ(byObject.size(), 2u);
    ASSERT_EQ(byBoth.size(), 1u);
    EXPECT_EQ(byBoth[0].name + byBoth[0].object, "Ao1");
    EXPECT_TRUE(removedMeanwhile.empty());
}

TEST_F(DBusNotificationCenterTest, ForeignSignalsNeverCrashAndBadUserInfoCountsAsNone) {
    listener.addObserver("", "", recordInto(all));
    sendRaw({"garbage", "o", "<plist><dict><key>k</key><string>"});
    sendRaw({"binary", "o", "bplist00\x01\x02"});
    sendRaw({"array", "o", QString::fromStdString(plist::toXml(Array{"x"}))});
    sendRaw({42, "not a name"});
    sendRaw({"other interface", "o", ""}, "com.example.Other");
    sendRaw({"short", "o"});
    ASSERT_TRUE(waitUntil([&] { return all.size() == 4; }));
    std::string names;
    for (const Notification& n : all) names += n.name + (n.userInfo ? "+" : ";");
    EXPECT_EQ(names, "garbage;binary;array;short;");
}

TEST_F(DBusNotificationCenterTest, APostFromAProcessThatExitsAtOnceArrives) {
    listener.addObserver("", "", recordInto(all));
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // A large user info takes several writes, which an exit could cut short.
    Dictionary info{{"bytes", Data(1 << 20, 7)}};
    EXPECT_EXIT((DBusNotificationCenter().post({"last words", "", info}), _exit(0)), ::testing::ExitedWithCode(0), "");
    ASSERT_TRUE(waitUntil([&] { return all.size() == 1; }));
    EXPECT_EQ(all[0].userInfo, info);
}

TEST(DBusNotificationCenterWithoutBus, PostingIsAHarmlessNoOp) {
    application();
    DBusNotificationCenter broken(QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"), "broken"));
    EXPECT_FALSE(broken.isConnected());
    broken.removeObserver(broken.addObserver("", "", [](const Notification&) { FAIL(); }));
    broken.post({"N", "o", Dictionary{{"k", "v"}}});

    // A process started with no session bus at all.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "XDG_RUNTIME_DIR"}) unsetenv(name);
            application();
            DBusNotificationCenter center;
            center.post({"N", "o", Dictionary{{"k", "v"}}});
            std::exit(center.isConnected() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
