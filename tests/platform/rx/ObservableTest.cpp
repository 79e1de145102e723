#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using EditorService::Testing::Recorder;
using testing::ElementsAre;

namespace {

struct CustomError {
    int code;
};

} // namespace

TEST(ObservableTest, CreateRunsInsideSubscribeOnTheSubscribingThread) {
    std::thread::id producer;
    bool inside = false;
    auto o = rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int> s) {
        producer = std::this_thread::get_id();
        inside = true;
        s.on_next(1);
        s.on_completed();
    });
    Recorder r;
    EXPECT_FALSE(inside);
    o.subscribe(r.subscriber<int>());
    EXPECT_EQ(producer, std::this_thread::get_id());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_completed"));
}

TEST(ObservableTest, ThrowFromCreateBecomesOnErrorWithTheSameObject) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("create"));
    std::exception_ptr received;
    rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int>) {
        std::rethrow_exception(thrown);
    }).subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(received, thrown);
}

TEST(ObservableTest, ProducerLoopStopsWhenTheSubscriberUnsubscribes) {
    int produced = 0;
    auto o = rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int> s) {
        for (int i = 0; s.is_subscribed() && i < 1000; ++i) {
            ++produced;
            s.on_next(i);
        }
    });
    rxcpp::composite_subscription cs;
    o.subscribe(
        cs,
        [&](int v) {
            if (v == 2)
                cs.unsubscribe();
        },
        [](std::exception_ptr) {});
    EXPECT_EQ(produced, 3);
}

TEST(ObservableTest, JustSendsOneValueThenCompletes) {
    Recorder r;
    rxcpp::observable<>::just(7).subscribe(r.subscriber<int>());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(7)", "on_completed"));
}

TEST(ObservableTest, ErrorFromAnExceptionObjectFailsEverySubscriberWithIt) {
    auto o = rxcpp::observable<>::error<int>(std::runtime_error("stored"));
    std::exception_ptr first;
    std::exception_ptr second;
    o.subscribe([](int) {}, [&](std::exception_ptr e) { first = e; });
    o.subscribe([](int) {}, [&](std::exception_ptr e) { second = e; });
    EXPECT_THAT(first, FailedWith<std::runtime_error>("stored"));
    EXPECT_EQ(first, second);
}

TEST(ObservableTest, ErrorFromAnExceptionPointerKeepsIt) {
    const auto ep = std::make_exception_ptr(CustomError{42});
    std::exception_ptr received;
    rxcpp::observable<>::error<int>(ep).subscribe([](int) {},
                                                  [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(received, ep);
}

TEST(ObservableTest, SubscribeFormsPickOnErrorAndOnCompletedByTheirParameters) {
    Recorder r;
    auto values = rxcpp::observable<>::just(1);
    auto failure = rxcpp::observable<>::error<int>(std::runtime_error("boom"));
    values.subscribe([&](int v) { r.add("next " + std::to_string(v)); });
    values.subscribe([](int) {}, [&] { r.add("completed"); });
    failure.subscribe([](int) {}, [&](std::exception_ptr) { r.add("error"); });
    values.subscribe([](int) {}, [](std::exception_ptr) {}, [&] { r.add("completed 3"); });
    rxcpp::composite_subscription cs;
    values.subscribe(
        cs, [&](int) { r.add("with lifetime"); }, [](std::exception_ptr) {});
    values.subscribe(r.subscriber<int>());
    EXPECT_THAT(r.lines(), ElementsAre("next 1", "completed", "error", "completed 3",
                                       "with lifetime", "on_next(1)", "on_completed"));
}

TEST(ObservableTest, SubscribeReturnsTheSubscribersLifetime) {
    rxcpp::composite_subscription cs;
    rxcpp::subjects::subject<int> source;
    auto returned = source.get_observable().subscribe(
        cs, [](int) {}, [](std::exception_ptr) {});
    EXPECT_TRUE(source.has_observers());
    returned.unsubscribe();
    EXPECT_FALSE(cs.is_subscribed());
    EXPECT_FALSE(source.has_observers());
}

TEST(ObservableTest, CopiesAndAsDynamicShareTheSource) {
    int subscriptions = 0;
    auto o = rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int> s) {
        ++subscriptions;
        s.on_completed();
    });
    rxcpp::observable<int> copy = o;
    rxcpp::observable<int, rxcpp::dynamic_observable<int>> dynamic = o.as_dynamic();
    copy.subscribe([](int) {}, [](std::exception_ptr) {});
    dynamic.subscribe([](int) {}, [](std::exception_ptr) {});
    EXPECT_EQ(subscriptions, 2);
}

TEST(ObservableTest, SubscribingAnAlreadyEndedSubscriberDoesNotRunTheSource) {
    bool ran = false;
    auto o = rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int>) { ran = true; });
    rxcpp::composite_subscription cs;
    cs.unsubscribe();
    o.subscribe(
        cs, [](int) {}, [](std::exception_ptr) {});
    EXPECT_FALSE(ran);
}

TEST(ObservableTest, SubscribeGivenACompositeReturnsThatVeryComposite) {
    rxcpp::subjects::subject<int> source;
    auto values = source.get_observable();
    rxcpp::composite_subscription next;
    rxcpp::composite_subscription nextError;
    rxcpp::composite_subscription nextCompleted;
    rxcpp::composite_subscription all;
    EXPECT_EQ(values.subscribe(next, [](int) {}), next);
    EXPECT_EQ(values.subscribe(
                  nextError, [](int) {}, [](std::exception_ptr) {}),
              nextError);
    EXPECT_EQ(values.subscribe(
                  nextCompleted, [](int) {}, [] {}),
              nextCompleted);
    EXPECT_EQ(values.subscribe(
                  all, [](int) {}, [](std::exception_ptr) {}, [] {}),
              all);
}

TEST(ObservableTest, SubscribeGivenASubscriberReturnsItsComposite) {
    rxcpp::composite_subscription cs;
    auto o = rxcpp::make_subscriber<int>(
        cs, [](int) {}, [](std::exception_ptr) {});
    auto returned = rxcpp::observable<>::just(1).subscribe(o);
    EXPECT_EQ(returned, cs);
    EXPECT_EQ(returned, o.get_subscription());
}

TEST(ObservableTest, SubscribeGivenAnEndedCompositeStillReturnsIt) {
    rxcpp::composite_subscription cs;
    cs.unsubscribe();
    EXPECT_EQ(rxcpp::observable<>::just(1).subscribe(
                  cs, [](int) {}, [](std::exception_ptr) {}),
              cs);
}

TEST(ObservableTest, SubscribeGivenOnlyFunctionsReturnsANewCompositeEachTime) {
    rxcpp::subjects::subject<int> source;
    auto values = source.get_observable();
    auto first = values.subscribe([](int) {}, [](std::exception_ptr) {});
    auto second = values.subscribe([](int) {}, [](std::exception_ptr) {});
    EXPECT_NE(first, second);
}

TEST(ObservableTest, CopiesAreEqualAndObservablesMadeApartAreNot) {
    auto o = rxcpp::observable<>::just(1);
    rxcpp::observable<int> copy = o;
    EXPECT_TRUE(o == copy);
    EXPECT_FALSE(o != copy);
    EXPECT_EQ(o.as_dynamic(), o);
    EXPECT_NE(o, rxcpp::observable<>::just(1));
    EXPECT_NE(o, o.map([](int v) { return v; }));
}
