#include "platform/editorlogic/CollectionController.h"

#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using Velmor::Testing::CallLog;

TEST(CollectionControllerTest, KnowsTheCollectionsItWasGiven) {
    const EditorCollection::Controller controller(QSet<QString>{"Packs", "Music"});
    EXPECT_EQ(controller.collectionIds(), (QSet<QString>{"Music", "Packs"}));
}

TEST(CollectionControllerTest, RecordsItsCollectionIdsSorted) {
    CallLog::clear();
    { const EditorCollection::Controller controller(QSet<QString>{"Packs", "Music"}); }
    const std::vector<std::string> expected{"EditorCollection::Controller::Controller(Music,Packs)",
                                            "EditorCollection::Controller::~Controller"};
    EXPECT_EQ(CallLog::entries(), expected);
}
