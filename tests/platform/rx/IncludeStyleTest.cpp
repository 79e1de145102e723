// Code that includes one operator header, as upstream allows, gets what it uses.
#include <rxcpp/operators/rx-map.hpp>

#include <gtest/gtest.h>

TEST(IncludeStyleTest, OneOperatorHeaderIsEnoughToUseThatOperator) {
    int received = 0;
    rxcpp::observable<>::just(20)
        .map([](int v) { return v + 1; })
        .subscribe([&](int v) { received = v; }, [](std::exception_ptr) {});
    EXPECT_EQ(received, 21);
}
