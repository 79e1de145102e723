#pragma once

#include <exception>
#include <functional>
#include <utility>

namespace Media {

// A queued task that calls done exactly once: with the work's result, or its failure and an
// empty result, or, when wanted says no as its turn comes, through cancel without doing the
// work. The controllers that queue work for a caller share it.
template <class Result>
std::function<void()> onceTask(std::function<Result()> work,
                               std::function<void(const Result&, std::exception_ptr)> done,
                               std::function<bool()> wanted, std::function<void()> cancel) {
    return [work = std::move(work), done = std::move(done), wanted = std::move(wanted),
            cancel = std::move(cancel)] {
        if (wanted && !wanted()) {
            cancel();
            return;
        }
        Result result;
        std::exception_ptr failure;
        try {
            result = work();
        } catch (...) {
            failure = std::current_exception();
        }
        // Handed over whole, outside the handler, so that whoever receives it holds the
        // failure last, not this thread.
        done(result, std::move(failure));
    };
}

} // namespace Media
