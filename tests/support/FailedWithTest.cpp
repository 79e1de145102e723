#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureText;
using testing::Not;

namespace {

template <class E> std::exception_ptr failure(const E& error) {
    return std::make_exception_ptr(error);
}

template <class M, class T> std::string explanation(const M& matcher, const T& value) {
    testing::StringMatchResultListener listener;
    testing::SafeMatcherCast<const T&>(matcher).MatchAndExplain(value, &listener);
    return listener.str();
}

} // namespace

TEST(FailedWithTest, MatchesTheExactTypeAndText) {
    EXPECT_THAT(failure(std::runtime_error("boom")), FailedWith<std::runtime_error>("boom"));
}

TEST(FailedWithTest, AnotherTextDoesNotMatch) {
    EXPECT_THAT(failure(std::runtime_error("boom")), Not(FailedWith<std::runtime_error>("boo")));
}

TEST(FailedWithTest, ASubclassOfTheTypeDoesNotMatch) {
    EXPECT_THAT(failure(std::out_of_range("boom")), Not(FailedWith<std::runtime_error>("boom")));
    EXPECT_THAT(failure(std::out_of_range("boom")), Not(FailedWith<std::logic_error>("boom")));
}

TEST(FailedWithTest, ANullFailureDoesNotMatchAndSaysSo) {
    const auto matcher = FailedWith<std::runtime_error>("boom");
    EXPECT_THAT(std::exception_ptr(), Not(matcher));
    EXPECT_EQ(explanation(matcher, std::exception_ptr()), "which is no failure");
}

TEST(FailedWithTest, TheExplanationNamesWhatWasThrown) {
    EXPECT_EQ(explanation(FailedWith<std::runtime_error>("x"), failure(std::out_of_range("y"))),
              "which is std::out_of_range \"y\"");
}

TEST(FailedWithTest, AFailureThatIsNoStdExceptionIsNamedByItsType) {
    EXPECT_EQ(explanation(FailedWith<std::runtime_error>("x"), std::make_exception_ptr(42)),
              "which is int \"(not a std::exception)\"");
}

TEST(FailedWithTest, TheDescriptionNamesTheExpectedTypeAndText) {
    std::ostringstream out;
    testing::Matcher<std::exception_ptr>(FailedWith<std::logic_error>("bad")).DescribeTo(&out);
    EXPECT_EQ(out.str(), "fails with std::logic_error \"bad\"");
}

TEST(FailedWithTest, ACallableIsCalledAndMustThrow) {
    EXPECT_THAT([] { throw std::invalid_argument("no"); }, FailedWith<std::invalid_argument>("no"));
    EXPECT_THAT([] {}, Not(FailedWith<std::invalid_argument>("no")));
}

TEST(FailedWithTest, FailureTextIsNullSafe) {
    EXPECT_EQ(failureText(nullptr), "(no failure)");
    EXPECT_EQ(failureText(failure(std::runtime_error("boom"))), "boom");
    EXPECT_EQ(failureText(std::make_exception_ptr(1)), "(not a std::exception)");
}
