#include <rxcpp/rx.hpp>

#include <gtest/gtest.h>

#include <string>

TEST(TakeAtTest, ReturnsACopyOfTheChosenArgument) {
    EXPECT_EQ(rxcpp::util::take_at<0>()(1, std::string("b")), 1);
    EXPECT_EQ(rxcpp::rxu::take_at<1>()(1, std::string("b")), "b");
}
