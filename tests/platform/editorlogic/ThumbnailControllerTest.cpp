#include "platform/editorlogic/ThumbnailController.h"

#include "platform/editorlogic/FrameExtractor.h"
#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using Velmor::Testing::CallLog;

TEST(ThumbnailControllerTest, SharesItsExtractorAndReleasesItWhenDestroyed) {
    CallLog::clear();
    std::weak_ptr<Thumbnail::Extractor> watched;
    {
        const Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
        watched = controller.extractor();
        EXPECT_EQ(watched.use_count(), 1);
    }
    EXPECT_TRUE(watched.expired());
    const std::vector<std::string> expected{
        "Thumbnail::FrameExtractor::FrameExtractor", "Thumbnail::Controller::Controller",
        "Thumbnail::Controller::~Controller", "Thumbnail::FrameExtractor::~FrameExtractor"};
    EXPECT_EQ(CallLog::entries(), expected);
}
