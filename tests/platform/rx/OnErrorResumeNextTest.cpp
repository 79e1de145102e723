#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using EditorService::Testing::failureText;
using EditorService::Testing::Recorder;
using testing::ElementsAre;

TEST(OnErrorResumeNextTest, ValuesAndCompletionPassThrough) {
    Recorder r;
    int selectorCalls = 0;
    rxcpp::observable<>::just(1)
        .on_error_resume_next([&](std::exception_ptr) {
            ++selectorCalls;
            return rxcpp::observable<>::just(2);
        })
        .subscribe(r.subscriber<int>());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_completed"));
    EXPECT_EQ(selectorCalls, 0);
}

TEST(OnErrorResumeNextTest, ErrorSwitchesToTheSelectedStream) {
    rxcpp::subjects::subject<int> source;
    Recorder r;
    source.get_observable()
        .on_error_resume_next([](std::exception_ptr e) {
            return rxcpp::observable<>::just(failureText(e) == "boom" ? 99 : -1);
        })
        .subscribe(r.subscriber<int>());
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_error(std::make_exception_ptr(std::runtime_error("boom")));
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_next(99)", "on_completed"));
    EXPECT_FALSE(source.has_observers());
}

TEST(OnErrorResumeNextTest, SelectorThatRethrowsPassesTheSameErrorOn) {
    const auto ep = std::make_exception_ptr(std::runtime_error("original"));
    std::exception_ptr received;
    int errors = 0;
    rxcpp::observable<>::error<int>(ep)
        .on_error_resume_next(
            [](std::exception_ptr e) -> rxcpp::observable<int> { std::rethrow_exception(e); })
        .subscribe([](int) {},
                   [&](std::exception_ptr e) {
                       ++errors;
                       received = e;
                   });
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(received, ep);
}

TEST(OnErrorResumeNextTest, SelectorThatThrowsSomethingElsePassesThatOn) {
    const auto replacement = std::make_exception_ptr(std::logic_error("replacement"));
    std::exception_ptr received;
    rxcpp::observable<>::error<int>(std::runtime_error("original"))
        .on_error_resume_next([&](std::exception_ptr) -> rxcpp::observable<int> {
            std::rethrow_exception(replacement);
        })
        .subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(received, replacement);
}

TEST(OnErrorResumeNextTest, SelectorRunsOnTheThreadThatDeliveredTheError) {
    rxcpp::subjects::subject<int> source;
    std::thread::id selectorThread;
    source.get_observable()
        .on_error_resume_next([&](std::exception_ptr) {
            selectorThread = std::this_thread::get_id();
            return rxcpp::observable<>::just(1);
        })
        .subscribe([](int) {}, [](std::exception_ptr) {});
    std::thread failer([&] {
        source.get_subscriber().on_error(std::make_exception_ptr(std::runtime_error("x")));
    });
    const auto failerId = failer.get_id();
    failer.join();
    EXPECT_EQ(selectorThread, failerId);
}

TEST(OnErrorResumeNextTest, UnsubscribingReachesTheResumedStream) {
    rxcpp::subjects::subject<int> resumed;
    rxcpp::composite_subscription cs;
    rxcpp::observable<>::error<int>(std::runtime_error("x"))
        .on_error_resume_next([&](std::exception_ptr) { return resumed.get_observable(); })
        .subscribe(
            cs, [](int) {}, [](std::exception_ptr) {});
    ASSERT_TRUE(resumed.has_observers());
    cs.unsubscribe();
    EXPECT_FALSE(resumed.has_observers());
}
