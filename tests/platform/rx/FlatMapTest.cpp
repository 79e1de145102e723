#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <set>
#include <stdexcept>
#include <thread>

using EditorService::Testing::Recorder;
using testing::ElementsAre;

namespace {

rxcpp::observable<int> range(int from, int count) {
    return rxcpp::observable<>::create<int>([from, count](rxcpp::subscriber<int> s) {
        for (int i = from; i < from + count && s.is_subscribed(); ++i)
            s.on_next(i);
        s.on_completed();
    });
}

} // namespace

TEST(FlatMapTest, MergesTheInnerValuesWithTheDefaultResultSelector) {
    Recorder r;
    range(1, 3).flat_map([](int v) { return range(v * 10, 2); }).subscribe(r.subscriber<int>());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(10)", "on_next(11)", "on_next(20)", "on_next(21)",
                                       "on_next(30)", "on_next(31)", "on_completed"));
}

TEST(FlatMapTest, ResultSelectorSeesTheOuterAndTheInnerValue) {
    Recorder r;
    range(1, 2)
        .flat_map([](int v) { return range(v * 10, 2); },
                  [](int outer, int inner) {
                      return std::to_string(outer) + ":" + std::to_string(inner);
                  })
        .subscribe(r.subscriber<std::string>());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1:10)", "on_next(1:11)", "on_next(2:20)",
                                       "on_next(2:21)", "on_completed"));
}

TEST(FlatMapTest, AllFourOverloadsGiveTheSameValues) {
    auto selector = [](int v) { return rxcpp::observable<>::just(v * 2); };
    auto keepInner = rxcpp::util::take_at<1>();
    auto identity = rxcpp::identity_current_thread();
    std::vector<int> a, b, c, d;
    auto onError = [](std::exception_ptr) {};
    range(1, 3).flat_map(selector).subscribe([&](int v) { a.push_back(v); }, onError);
    range(1, 3).flat_map(selector, identity).subscribe([&](int v) { b.push_back(v); }, onError);
    range(1, 3).flat_map(selector, keepInner).subscribe([&](int v) { c.push_back(v); }, onError);
    range(1, 3)
        .flat_map(selector, keepInner, identity)
        .subscribe([&](int v) { d.push_back(v); }, onError);
    EXPECT_THAT(a, ElementsAre(2, 4, 6));
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, c);
    EXPECT_EQ(a, d);
}

TEST(FlatMapTest, CompletesOnlyWhenTheSourceAndEveryInnerStreamHaveCompleted) {
    rxcpp::subjects::subject<int> source;
    rxcpp::subjects::subject<int> first;
    rxcpp::subjects::subject<int> second;
    Recorder r;
    source.get_observable()
        .flat_map([&](int v) { return v == 1 ? first.get_observable() : second.get_observable(); })
        .subscribe(r.subscriber<int>());
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_next(2);
    source.get_subscriber().on_completed();
    first.get_subscriber().on_next(10);
    first.get_subscriber().on_completed();
    EXPECT_EQ(r.terminals(), 0);
    second.get_subscriber().on_next(20);
    second.get_subscriber().on_completed();
    EXPECT_THAT(r.lines(), ElementsAre("on_next(10)", "on_next(20)", "on_completed"));
}

TEST(FlatMapTest, InnerStreamIsSubscribedInsideTheSourcesOnNext) {
    rxcpp::subjects::subject<int> source;
    std::vector<std::string> order;
    source.get_observable()
        .flat_map([&](int v) {
            order.push_back("selector " + std::to_string(v));
            return rxcpp::observable<>::create<int>([&order, v](rxcpp::subscriber<int> s) {
                order.push_back("inner subscribed " + std::to_string(v));
                s.on_completed();
            });
        })
        .subscribe([](int) {}, [](std::exception_ptr) {});
    source.get_subscriber().on_next(1);
    order.push_back("on_next returned");
    EXPECT_THAT(order, ElementsAre("selector 1", "inner subscribed 1", "on_next returned"));
}

TEST(FlatMapTest, FirstInnerErrorEndsTheStreamAndUnsubscribesEverythingElse) {
    rxcpp::subjects::subject<int> source;
    rxcpp::subjects::subject<int> failing;
    rxcpp::subjects::subject<int> other;
    const auto ep = std::make_exception_ptr(std::runtime_error("inner"));
    std::exception_ptr received;
    int terminals = 0;
    source.get_observable()
        .flat_map([&](int v) { return v == 1 ? failing.get_observable() : other.get_observable(); })
        .subscribe([](int) {},
                   [&](std::exception_ptr e) {
                       ++terminals;
                       received = e;
                   },
                   [&] { ++terminals; });
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_next(2);
    failing.get_subscriber().on_error(ep);
    EXPECT_EQ(received, ep);
    EXPECT_FALSE(source.has_observers());
    EXPECT_FALSE(other.has_observers());
    other.get_subscriber().on_error(std::make_exception_ptr(std::runtime_error("second")));
    other.get_subscriber().on_completed();
    EXPECT_EQ(terminals, 1);
}

TEST(FlatMapTest, SourceErrorEndsTheStreamAndUnsubscribesTheInnerStreams) {
    rxcpp::subjects::subject<int> source;
    rxcpp::subjects::subject<int> inner;
    const auto ep = std::make_exception_ptr(std::runtime_error("source"));
    std::exception_ptr received;
    source.get_observable()
        .flat_map([&](int) { return inner.get_observable(); })
        .subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_error(ep);
    EXPECT_EQ(received, ep);
    EXPECT_FALSE(inner.has_observers());
}

TEST(FlatMapTest, ThrowFromTheCollectionSelectorEndsTheStreamWithTheSameObject) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("collection"));
    std::exception_ptr received;
    range(1, 3)
        .flat_map([&](int v) -> rxcpp::observable<int> {
            if (v == 2)
                std::rethrow_exception(thrown);
            return rxcpp::observable<>::just(v);
        })
        .subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(received, thrown);
}

TEST(FlatMapTest, ThrowFromTheResultSelectorEndsTheStreamWithTheSameObject) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("result"));
    std::exception_ptr received;
    int values = 0;
    range(1, 3)
        .flat_map([](int v) { return rxcpp::observable<>::just(v); },
                  [&](int, int inner) -> int {
                      if (inner == 2)
                          std::rethrow_exception(thrown);
                      return inner;
                  })
        .subscribe([&](int) { ++values; }, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(values, 1);
    EXPECT_EQ(received, thrown);
}

TEST(FlatMapTest, UnsubscribingReachesTheSourceAndEveryInnerStreamAtOnce) {
    rxcpp::subjects::subject<int> source;
    rxcpp::subjects::subject<int> first;
    rxcpp::subjects::subject<int> second;
    rxcpp::composite_subscription cs;
    source.get_observable()
        .flat_map([&](int v) { return v == 1 ? first.get_observable() : second.get_observable(); })
        .subscribe(
            cs, [](int) {}, [](std::exception_ptr) {});
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_next(2);
    ASSERT_TRUE(first.has_observers());
    cs.unsubscribe();
    EXPECT_FALSE(source.has_observers());
    EXPECT_FALSE(first.has_observers());
    EXPECT_FALSE(second.has_observers());
}

TEST(FlatMapTest, ManyCompletedInnerStreamsAreLetGo) {
    auto marker = std::make_shared<int>(0);
    std::weak_ptr<int> watch = marker;
    rxcpp::subjects::subject<int> source;
    source.get_observable()
        .flat_map([marker](int v) {
            return rxcpp::observable<>::create<int>([marker, v](rxcpp::subscriber<int> s) {
                s.add([marker] {});
                s.on_next(v);
                s.on_completed();
            });
        })
        .subscribe([](int) {}, [](std::exception_ptr) {});
    for (int i = 0; i < 10000; ++i)
        source.get_subscriber().on_next(i);
    marker.reset();
    EXPECT_LT(watch.use_count(), 10); // the selector's own copies, not one per inner stream
}

TEST(FlatMapTest, InnerStreamsOnSeveralThreadsAllArriveUncorruptedAndCompleteOnce) {
    constexpr int streams = 8;
    constexpr int perStream = 2000;
    std::mutex lock;
    std::map<int, std::vector<int>> received;
    std::atomic<int> completions{0};
    std::atomic<int> errors{0};
    Recorder done;

    auto inner = [](int id) {
        return rxcpp::observable<>::create<std::pair<int, int>>(
                   [id](rxcpp::subscriber<std::pair<int, int>> s) {
                       for (int i = 0; i < perStream; ++i)
                           s.on_next({id, i});
                       s.on_completed();
                   })
            .observe_on(rxcpp::observe_on_new_thread());
    };
    range(0, streams)
        .flat_map(inner)
        .subscribe(
            [&](const std::pair<int, int>& v) {
                std::lock_guard<std::mutex> guard(lock);
                received[v.first].push_back(v.second);
            },
            [&](std::exception_ptr) {
                ++errors;
                done.add("error");
            },
            [&] {
                ++completions;
                done.add("completed");
            });
    ASSERT_TRUE(done.waitForLines(1));
    std::lock_guard<std::mutex> guard(lock);
    EXPECT_EQ(completions.load(), 1);
    EXPECT_EQ(errors.load(), 0);
    ASSERT_EQ(received.size(), std::size_t(streams));
    for (const auto& [id, values] : received) {
        ASSERT_EQ(values.size(), std::size_t(perStream)) << "stream " << id;
        for (int i = 0; i < perStream; ++i)
            ASSERT_EQ(values[i], i) << "stream " << id;
    }
}

TEST(FlatMapTest, ObserveOnCoordinationDeliversEverythingOnOneWorker) {
    std::mutex lock;
    std::set<std::thread::id> threads;
    Recorder r;
    range(0, 4)
        .flat_map([](int v) { return range(v * 100, 50); }, rxcpp::observe_on_new_thread())
        .subscribe(
            [&](int) {
                std::lock_guard<std::mutex> guard(lock);
                threads.insert(std::this_thread::get_id());
            },
            [&](std::exception_ptr) { r.add("error"); }, [&] { r.add("completed"); });
    ASSERT_TRUE(r.waitForLines(1));
    EXPECT_THAT(r.lines(), ElementsAre("completed"));
    std::lock_guard<std::mutex> guard(lock);
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_NE(*threads.begin(), std::this_thread::get_id());
}
