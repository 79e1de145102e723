#include "platform/editorlogic/CompositionController.h"
#include "platform/editorlogic/FastTrackControllerStub.h"
#include "platform/editorlogic/SourceController.h"
#include "platform/editorlogic/StateController.h"
#include "platform/editorlogic/Synchronizer.h"
#include "platform/editorlogic/TimelineController.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

// The controllers whose whole observable life is their construction and destruction.
template <class T> struct Recorded;

#define RECORDED(Type, Name)                                                                       \
    template <> struct Recorded<Type> {                                                            \
        static std::string name() { return Name; }                                                 \
    }

RECORDED(Connection::Synchronizer, "Connection::Synchronizer::Synchronizer");
RECORDED(Media::SourceController, "Media::SourceController::SourceController");
RECORDED(Composition::Controller, "Composition::Controller::Controller");
RECORDED(State::Controller, "State::Controller::Controller");
RECORDED(FastTrack::ControllerStub, "FastTrack::ControllerStub::ControllerStub");
RECORDED(Timeline::Controller, "Timeline::Controller::Controller");

template <class T> class RecordedLifetimeTest : public testing::Test {
protected:
    void SetUp() override {
        Probe::clear();
        CallLog::clear();
    }

    static std::string destructorName() {
        std::string name = Recorded<T>::name();
        const auto last = name.rfind("::");
        return name.substr(0, last + 2) + "~" + name.substr(last + 2);
    }
};

using RecordedTypes =
    testing::Types<Connection::Synchronizer, Media::SourceController, Composition::Controller,
                   State::Controller, FastTrack::ControllerStub, Timeline::Controller>;

struct RecordedName {
    template <class T> static std::string GetName(int) {
        std::string name = Recorded<T>::name();
        name = name.substr(0, name.rfind("::"));
        for (auto colon = name.find("::"); colon != std::string::npos; colon = name.find("::"))
            name.erase(colon, 2);
        return name;
    }
};
TYPED_TEST_SUITE(RecordedLifetimeTest, RecordedTypes, RecordedName);

TYPED_TEST(RecordedLifetimeTest, ConstructionAndDestructionAreRecorded) {
    { TypeParam object; }
    const std::vector<std::string> expected{Recorded<TypeParam>::name(),
                                            TestFixture::destructorName()};
    EXPECT_EQ(CallLog::entries(), expected);
}

TYPED_TEST(RecordedLifetimeTest, AnInjectedFailureLeavesTheConstructorUnrecorded) {
    Probe::failNext(Recorded<TypeParam>::name());
    EXPECT_THAT(
        [&] { TypeParam object; },
        FailedWith<std::runtime_error>("Injected failure at " + Recorded<TypeParam>::name()));
    EXPECT_TRUE(CallLog::entries().empty());
}
