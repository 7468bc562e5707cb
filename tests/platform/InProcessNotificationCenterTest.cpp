#include "platform/InProcessNotificationCenter.h"

#include <gtest/gtest.h>

using namespace corvalis;

TEST(InProcessNotificationCenter, FiltersDeliversSynchronouslyAndLogsEveryPost) {
    InProcessNotificationCenter center;
    std::string seen;
    center.addObserver("A", "", [&](const Notification& n) { seen += "name:" + n.object + " "; });
    center.addObserver("", "o", [&](const Notification& n) { seen += "object:" + n.name + " "; });
    center.addObserver("", "", [&](const Notification& n) { seen += "all:" + n.name + " "; });
    center.post({"A", "x", {}});
    center.post({"B", "o", {}});
    center.post({"C", "", {}});
    EXPECT_EQ(seen, "name:x all:A object:B all:B all:C ");
    ASSERT_EQ(center.posted().size(), 3u);
    EXPECT_EQ(center.posted()[1].name, "B");
    center.clearPosted();
    EXPECT_TRUE(center.posted().empty());
}

TEST(InProcessNotificationCenter, ObserversChangedDuringDispatchTakeEffectAtOnce) {
    InProcessNotificationCenter center;
    int self = 0, removed = 0, added = 0;
    NotificationCenter::Token selfToken = 0, laterToken = 0;
    selfToken = center.addObserver("", "", [&](const Notification&) {
        ++self;
        center.removeObserver(selfToken);
        center.removeObserver(laterToken);
        center.addObserver("", "", [&](const Notification&) { ++added; });
    });
    laterToken = center.addObserver("", "", [&](const Notification&) { ++removed; });
    center.post({"N", "", {}});
    center.post({"N", "", {}});
    EXPECT_EQ(self, 1);
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(added, 1);  // added during the first post, called for the second only
}
