#include "platform/engine/ICoreTracker.h"

#include <boost/intrusive_ptr.hpp>
#include <gtest/gtest.h>

namespace {

class CountingTracker : public Velmor::Proc::ICoreTracker {
public:
    explicit CountingTracker(bool* destroyed)
        : destroyed(destroyed) {}
    ~CountingTracker() override { *destroyed = true; }
    void OnPluginLoaded(const std::string&) override {}

private:
    bool* destroyed;
};

} // namespace

TEST(ICoreTrackerTest, TheLastIntrusivePointerDestroysTheTracker) {
    bool destroyed = false;
    boost::intrusive_ptr<Velmor::Proc::ICoreTracker> first(new CountingTracker(&destroyed));
    auto second = first;
    first.reset();
    EXPECT_FALSE(destroyed);
    second.reset();
    EXPECT_TRUE(destroyed);
}
