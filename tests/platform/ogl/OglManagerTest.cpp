#include "platform/ogl/OglManager.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>
#include <stdexcept>

using Velmor::Ogl::OglManager;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

class OglManagerTest : public testing::Test {
protected:
    void SetUp() override {
        Probe::clear();
        OglManager::GetInstance().Deinitialize();
        CallLog::clear();
    }
};

TEST_F(OglManagerTest, GetInstanceIsOneObject) {
    EXPECT_EQ(&OglManager::GetInstance(), &OglManager::GetInstance());
}

TEST_F(OglManagerTest, KeepsItsStateBetweenCalls) {
    auto& ogl = OglManager::GetInstance();
    EXPECT_FALSE(ogl.IsInitialized());
    ogl.Initialize();
    EXPECT_TRUE(ogl.IsInitialized());
    ogl.Deinitialize();
    EXPECT_FALSE(ogl.IsInitialized());
}

TEST_F(OglManagerTest, InitializeAndDeinitializeMayBeRepeated) {
    auto& ogl = OglManager::GetInstance();
    ogl.Initialize();
    ogl.Initialize();
    EXPECT_TRUE(ogl.IsInitialized());
    ogl.Deinitialize();
    ogl.Deinitialize();
    EXPECT_FALSE(ogl.IsInitialized());
}

TEST_F(OglManagerTest, EveryCallIsRecordedInOrder) {
    auto& ogl = OglManager::GetInstance();
    ogl.IsInitialized();
    ogl.Initialize();
    ogl.Deinitialize();
    const std::vector<std::string> expected{"OglManager::IsInitialized", "OglManager::Initialize",
                                            "OglManager::Deinitialize"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(OglManagerTest, AnInjectedFailureOfInitializeLeavesItUninitialised) {
    Probe::failNext("OglManager::Initialize");
    auto& ogl = OglManager::GetInstance();
    EXPECT_THROW(ogl.Initialize(), std::runtime_error);
    EXPECT_FALSE(ogl.IsInitialized());
}
