#include "service/contexts/RenderContext.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/service/contexts/RuntimeFixture.h"
#include "tests/support/FailedWith.h"

#include <optional>
#include <stdexcept>
#include <type_traits>

using EditorService::AbstractContext;
using EditorService::RenderContext;
using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

class RenderContextTest : public EditorService::Testing::RuntimeFixture {};

TEST_F(RenderContextTest, IsAContextWithoutAMetaObjectOfItsOwn) {
    EXPECT_TRUE((std::is_base_of_v<AbstractContext, RenderContext>));
    EXPECT_TRUE(std::is_default_constructible_v<RenderContext>);
    const RenderContext context;
    EXPECT_EQ(context.metaObject(), &AbstractContext::staticMetaObject);
}

TEST_F(RenderContextTest, BuildsItsControllersInOrderWithTheFrameExtractorJustBeforeItsUser) {
    const RenderContext context;
    const std::vector<std::string> expected{
        "Composition::Controller::Controller",       "State::Controller::Controller",
        "FastTrack::ControllerStub::ControllerStub", "Timeline::Controller::Controller",
        "Thumbnail::FrameExtractor::FrameExtractor", "Thumbnail::Controller::Controller"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(RenderContextTest, TearsDownInReverseAndTheExtractorGoesWithTheThumbnailController) {
    std::optional<RenderContext> context(std::in_place);
    CallLog::clear();
    context.reset();
    const std::vector<std::string> expected{
        "Thumbnail::Controller::~Controller", "Thumbnail::FrameExtractor::~FrameExtractor",
        "Timeline::Controller::~Controller",  "FastTrack::ControllerStub::~ControllerStub",
        "State::Controller::~Controller",     "Composition::Controller::~Controller"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(RenderContextTest, AFieldConstructorThatThrowsUnwindsTheFieldsBuiltSoFar) {
    Probe::failNext("Thumbnail::Controller::Controller");
    EXPECT_THAT(
        [&] { const RenderContext context; },
        FailedWith<std::runtime_error>("Injected failure at Thumbnail::Controller::Controller"));
    const std::vector<std::string> expected{"Composition::Controller::Controller",
                                            "State::Controller::Controller",
                                            "FastTrack::ControllerStub::ControllerStub",
                                            "Timeline::Controller::Controller",
                                            "Thumbnail::FrameExtractor::FrameExtractor",
                                            "Thumbnail::FrameExtractor::~FrameExtractor",
                                            "Timeline::Controller::~Controller",
                                            "FastTrack::ControllerStub::~ControllerStub",
                                            "State::Controller::~Controller",
                                            "Composition::Controller::~Controller"};
    EXPECT_EQ(CallLog::entries(), expected);
}
