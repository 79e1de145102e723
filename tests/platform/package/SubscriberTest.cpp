#include "platform/package/Subscriber.h"

#include "platform/package/ContentProvider.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {

struct Ping {
    int value;
};
struct Name {
    std::string text;
};

class Recorder : public PubSub::Subscriber<Ping, Name> {
public:
    void receive(const Ping& ping) override { log += "ping" + std::to_string(ping.value) + ";"; }
    void receive(const Name& name) override { log += "name" + name.text + ";"; }

    std::string log;
};

} // namespace

TEST(SubscriberTest, DispatchesEachMessageTypeToItsOwnReceive) {
    Recorder recorder;
    PubSub::Subscriber<Ping, Name>& subscriber = recorder;
    subscriber.receive(Ping{3});
    subscriber.receive(Name{"x"});
    EXPECT_EQ(recorder.log, "ping3;namex;");
}

TEST(SubscriberTest, ThePackageContentProviderSubscribesToItsFourMessagesInOrder) {
    using Expected =
        PubSub::Subscriber<Package::InstallFinishedNotification, Package::GetPackagesRequest,
                           Package::LoadPackagesRequest, Package::PackageRemoveRequest>;
    EXPECT_TRUE((std::is_base_of_v<Expected, Package::ContentProvider>));
    EXPECT_TRUE((
        std::is_same_v<Expected::Subscriptions,
                       std::tuple<Package::InstallFinishedNotification, Package::GetPackagesRequest,
                                  Package::LoadPackagesRequest, Package::PackageRemoveRequest>>));
    EXPECT_EQ(Expected::subscriptionCount, 4u);
}
