#include "platform/editorlogic/FrameExtractor.h"

#include "platform/editorlogic/ThumbnailTaskProvider.h"
#include "platform/foundation/CallLog.h"

#include <deque>
#include <gtest/gtest.h>
#include <type_traits>

using Velmor::Testing::CallLog;

namespace {

class QueueProvider : public Thumbnail::TaskProvider {
public:
    QueueProvider(std::vector<std::string>* done, std::vector<std::string> names) {
        for (auto& name : names)
            tasks.push_back([done, name] { done->push_back(name); });
    }
    std::function<void()> takeTask() override {
        if (tasks.empty())
            return {};
        auto task = std::move(tasks.front());
        tasks.pop_front();
        return task;
    }

    std::deque<std::function<void()>> tasks;
};

} // namespace

TEST(FrameExtractorTest, IsAThumbnailExtractor) {
    EXPECT_TRUE((std::is_base_of_v<Thumbnail::Extractor, Thumbnail::FrameExtractor>));
    EXPECT_TRUE(std::has_virtual_destructor_v<Thumbnail::Extractor>);
}

TEST(FrameExtractorTest, ProcessRunsEveryTaskProviderByProviderInOrderOfAdding) {
    std::vector<std::string> done;
    auto first = std::make_shared<QueueProvider>(&done, std::vector<std::string>{"a1", "a2"});
    auto second = std::make_shared<QueueProvider>(&done, std::vector<std::string>{"b1"});
    std::shared_ptr<Thumbnail::Extractor> extractor = std::make_shared<Thumbnail::FrameExtractor>();
    extractor->addProvider(second);
    extractor->addProvider(first);
    extractor->addProvider(second);
    extractor->process();
    const std::vector<std::string> expected{"b1", "a1", "a2"};
    EXPECT_EQ(done, expected);
}

TEST(FrameExtractorTest, ARemovedProviderIsNotAsked) {
    std::vector<std::string> done;
    auto provider = std::make_shared<QueueProvider>(&done, std::vector<std::string>{"a"});
    Thumbnail::FrameExtractor extractor;
    extractor.addProvider(provider);
    extractor.removeProvider(provider);
    extractor.process();
    EXPECT_TRUE(done.empty());
    EXPECT_EQ(provider->tasks.size(), 1u);
}

TEST(FrameExtractorTest, ConstructionAndDestructionAreRecorded) {
    CallLog::clear();
    { Thumbnail::FrameExtractor extractor; }
    const std::vector<std::string> expected{"Thumbnail::FrameExtractor::FrameExtractor",
                                            "Thumbnail::FrameExtractor::~FrameExtractor"};
    EXPECT_EQ(CallLog::entries(), expected);
}
