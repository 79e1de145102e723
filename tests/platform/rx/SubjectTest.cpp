#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

using EditorService::Testing::failureText;
using EditorService::Testing::Recorder;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SubjectTest, ValueSentWithNoObserverIsLost) {
    rxcpp::subjects::subject<int> subject;
    subject.get_subscriber().on_next(1);
    Recorder r;
    subject.get_observable().subscribe(r.subscriber<int>());
    subject.get_subscriber().on_next(2);
    EXPECT_THAT(r.lines(), ElementsAre("on_next(2)"));
}

TEST(SubjectTest, ValuesGoToObserversInSubscriptionOrder) {
    rxcpp::subjects::subject<int> subject;
    std::vector<std::string> order;
    for (const char* name : {"a", "b", "c"})
        subject.get_observable().subscribe(
            [&order, name](int v) { order.push_back(name + std::to_string(v)); },
            [](std::exception_ptr) {});
    subject.get_subscriber().on_next(1);
    subject.get_subscriber().on_next(2);
    EXPECT_THAT(order, ElementsAre("a1", "b1", "c1", "a2", "b2", "c2"));
}

TEST(SubjectTest, AValueGivenUpGoesByMoveToTheLastObserverAndAsACopyToTheOthers) {
    rxcpp::subjects::subject<std::shared_ptr<int>> subject;
    std::vector<long> owners;
    for (int i = 0; i < 2; ++i)
        subject.get_observable().subscribe(
            [&owners](std::shared_ptr<int> v) { owners.push_back(v.use_count()); },
            [](std::exception_ptr) {});
    subject.get_subscriber().on_next(std::make_shared<int>(1));
    // The first observer's copy shares the value with the one still to go to the last.
    EXPECT_THAT(owners, ElementsAre(2, 1));
}

TEST(SubjectTest, LateObserverGetsTheCompletionAtOnce) {
    rxcpp::subjects::subject<int> subject;
    subject.get_subscriber().on_completed();
    Recorder r;
    subject.get_observable().subscribe(r.subscriber<int>());
    EXPECT_THAT(r.lines(), ElementsAre("on_completed"));
    EXPECT_FALSE(subject.has_observers());
}

TEST(SubjectTest, LateObserverGetsTheSameErrorAtOnce) {
    rxcpp::subjects::subject<int> subject;
    const auto ep = std::make_exception_ptr(std::runtime_error("boom"));
    subject.get_subscriber().on_error(ep);
    std::exception_ptr received;
    subject.get_observable().subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(received, ep);
}

TEST(SubjectTest, SignalsAfterTheEndAreIgnored) {
    rxcpp::subjects::subject<int> subject;
    Recorder r;
    subject.get_observable().subscribe(r.subscriber<int>());
    auto input = subject.get_subscriber();
    input.on_completed();
    input.on_next(1);
    input.on_error(std::make_exception_ptr(std::runtime_error("late")));
    input.on_completed();
    EXPECT_THAT(r.lines(), ElementsAre("on_completed"));
}

TEST(SubjectTest, UnsubscribedObserverGetsNothingMore) {
    rxcpp::subjects::subject<int> subject;
    Recorder r;
    rxcpp::composite_subscription cs;
    subject.get_observable().subscribe(r.subscriber<int>(cs));
    EXPECT_TRUE(subject.has_observers());
    subject.get_subscriber().on_next(1);
    cs.unsubscribe();
    EXPECT_FALSE(subject.has_observers());
    subject.get_subscriber().on_next(2);
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)"));
}

TEST(SubjectTest, EndingTheSubjectsOwnLifetimeDropsObserversWithoutASignal) {
    rxcpp::composite_subscription lifetime;
    rxcpp::subjects::subject<int> subject(lifetime);
    EXPECT_TRUE(subject.get_subscription().is_subscribed());
    Recorder r;
    subject.get_observable().subscribe(r.subscriber<int>());
    lifetime.unsubscribe();
    EXPECT_FALSE(subject.has_observers());
    EXPECT_FALSE(subject.get_subscription().is_subscribed());
    subject.get_subscriber().on_next(1);
    subject.get_subscriber().on_completed();
    EXPECT_THAT(r.lines(), IsEmpty());

    rxcpp::composite_subscription late;
    subject.get_observable().subscribe(
        late, [](int) {}, [](std::exception_ptr) {});
    EXPECT_FALSE(late.is_subscribed());
}

TEST(SubjectTest, CopiesShareOneSubject) {
    rxcpp::subjects::subject<int> subject;
    auto copy = subject;
    Recorder r;
    copy.get_observable().subscribe(r.subscriber<int>());
    subject.get_subscriber().on_next(3);
    EXPECT_TRUE(subject.has_observers());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(3)"));
}

TEST(SubjectTest, ThrowingObserverFailsAloneAndTheOthersGoOn) {
    rxcpp::subjects::subject<int> subject;
    Recorder thrower;
    Recorder other;
    subject.get_observable().subscribe([](int) { throw std::runtime_error("observer"); },
                                       [&](std::exception_ptr e) { thrower.add(failureText(e)); });
    subject.get_observable().subscribe(other.subscriber<int>());
    subject.get_subscriber().on_next(1);
    subject.get_subscriber().on_next(2);
    EXPECT_THAT(thrower.lines(), ElementsAre("observer"));
    EXPECT_THAT(other.lines(), ElementsAre("on_next(1)", "on_next(2)"));
}

TEST(SubjectTest, ManyProducersReachEveryObserverWhileOthersComeAndGo) {
    constexpr int producers = 6;
    constexpr int perProducer = 5000;
    rxcpp::subjects::subject<int> subject;
    std::atomic<long long> count{0};
    std::atomic<long long> sum{0};
    subject.get_observable().subscribe(
        [&](int v) {
            ++count;
            sum += v;
        },
        [](std::exception_ptr) {});
    std::atomic<bool> producing{true};
    std::thread churn([&] {
        while (producing) {
            rxcpp::composite_subscription cs;
            subject.get_observable().subscribe(
                cs, [](int) {}, [](std::exception_ptr) {});
            cs.unsubscribe();
        }
    });
    std::vector<std::thread> threads;
    for (int p = 0; p < producers; ++p)
        threads.emplace_back([&] {
            auto input = subject.get_subscriber();
            for (int i = 1; i <= perProducer; ++i)
                input.on_next(i);
        });
    for (auto& t : threads)
        t.join();
    producing = false;
    churn.join();
    EXPECT_EQ(count.load(), producers * perProducer);
    EXPECT_EQ(sum.load(), producers * (perProducer * (perProducer + 1LL) / 2));
}

TEST(SubjectTest, SubjectMadeFromACompositeHasThatCompositeAsItsLifetime) {
    rxcpp::composite_subscription cs;
    rxcpp::subjects::subject<int> s(cs);
    EXPECT_EQ(s.get_subscription(), cs);
    EXPECT_EQ(s.get_subscriber().get_subscription(), cs);
    EXPECT_NE(rxcpp::subjects::subject<int>().get_subscription(), cs);
}
