#include <rxcpp/rx.hpp>

#include <benchmark/benchmark.h>

#include <functional>

// Each rx benchmark has a Plain twin that does the same work per value through std::function
// calls; items processed are values, so the per-item times give the overhead as a ratio.

namespace {

constexpr int valuesPerRun = 10000;

rxcpp::observable<int> counting() {
    return rxcpp::observable<>::create<int>([](rxcpp::subscriber<int> s) {
        for (int i = 0; i < valuesPerRun; ++i)
            s.on_next(i);
        s.on_completed();
    });
}

void PlainMapFilter(benchmark::State& state) {
    std::function<bool(int)> predicate = [](int v) { return v % 2 == 0; };
    std::function<long(int)> selector = [](int v) { return long(v) * 3; };
    long sum = 0;
    std::function<void(long)> sink = [&sum](long v) { sum += v; };
    for (auto _ : state) {
        for (int i = 0; i < valuesPerRun; ++i)
            if (predicate(i))
                sink(selector(i));
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * valuesPerRun);
}
BENCHMARK(PlainMapFilter);

void RxMapFilter(benchmark::State& state) {
    long sum = 0;
    auto pipeline =
        counting().filter([](int v) { return v % 2 == 0; }).map([](int v) { return long(v) * 3; });
    for (auto _ : state) {
        pipeline.subscribe([&sum](long v) { sum += v; }, [](std::exception_ptr) {});
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * valuesPerRun);
}
BENCHMARK(RxMapFilter);

void PlainSinkCall(benchmark::State& state) {
    long sum = 0;
    std::function<void(int)> sink = [&sum](int v) { sum += v; };
    for (auto _ : state) {
        for (int i = 0; i < valuesPerRun; ++i)
            sink(i);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * valuesPerRun);
}
BENCHMARK(PlainSinkCall);

void RxFlatMapOfJust(benchmark::State& state) {
    long sum = 0;
    auto pipeline = counting().flat_map([](int v) { return rxcpp::observable<>::just(v); });
    for (auto _ : state) {
        pipeline.subscribe([&sum](int v) { sum += v; }, [](std::exception_ptr) {});
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * valuesPerRun);
}
BENCHMARK(RxFlatMapOfJust);

void RxSubjectOneSubscriber(benchmark::State& state) {
    long sum = 0;
    rxcpp::subjects::subject<int> subject;
    subject.get_observable().subscribe([&sum](int v) { sum += v; }, [](std::exception_ptr) {});
    auto input = subject.get_subscriber();
    for (auto _ : state) {
        for (int i = 0; i < valuesPerRun; ++i)
            input.on_next(i);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * valuesPerRun);
}
BENCHMARK(RxSubjectOneSubscriber);

} // namespace
