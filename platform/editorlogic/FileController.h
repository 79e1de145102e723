#pragma once

#include "platform/av/MediaInfo.h"
#include "platform/editorlogic/OnceTask.h"

#include <QObject>
#include <QString>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>

namespace Task {
class Workers;
}

namespace Media {

class ICreatorFileParser;

// The failure a parse ends with when it never runs, because the controller went first or
// nobody wanted the file's description any more: "Probe cancelled: <path>".
class ProbeCancelled : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Opens and parses media files on a thread of its own. isBusy is emitted on that thread when
// work starts after a rest, isIdle there when the queue has run dry; they alternate, and
// neither is emitted once the destructor has begun. Both are emitted as Task::Workers signal:
// under the workers' signal lock, not the queue's. The parser creator is borrowed and must
// outlive the controller. The destructor waits for the running parse and ends each queued one with
// ProbeCancelled, on the destroying thread.
class FileController : public QObject {
    Q_OBJECT
public:
    explicit FileController(ICreatorFileParser* parsers);
    ~FileController() override;

    // The controller constructed last that is still alive; null when there is none.
    static FileController* instance();

    ICreatorFileParser* parsers() const;
    // Exactly one of `work` and `dropped` (when given) is called: `dropped` when the
    // controller goes before the work ran, on the destroying thread.
    void submit(std::function<void()> work, std::function<void()> dropped = nullptr);
    // What parsing a file gives: its description, or the failure that stopped it.
    using Parsed = std::function<void(const Velmor::AV::MediaInfo& info, std::exception_ptr error)>;

    // Whether the description is still wanted; asked on the controller's thread just before
    // the parse.
    using Wanted = std::function<bool()>;

    // Runs `work` on the controller's thread and hands its result, or the failure with an empty
    // result, to done there. done is called exactly once: with cancelled() when the controller
    // is destroyed before the work ran (then on the destroying thread), or when wanted says no
    // (then `work` never runs).
    template <class Result>
    void submitOnce(std::function<Result()> work,
                    std::function<void(const Result&, std::exception_ptr)> done, Wanted wanted,
                    std::function<std::exception_ptr()> cancelled);

    // Opens and parses the file on the controller's thread and hands the description, or the
    // failure with an empty description, to done there. done is called exactly once: with
    // ProbeCancelled when the controller is destroyed before the parse ran (then on the
    // destroying thread), or when wanted says no (then no file is opened).
    void parse(const QString& path, Parsed done, Wanted wanted = nullptr);

signals:
    void isBusy();
    void isIdle();

private:
    ICreatorFileParser* parserCreator;
    std::unique_ptr<Task::Workers> jobs;
};

template <class Result>
void FileController::submitOnce(std::function<Result()> work,
                                std::function<void(const Result&, std::exception_ptr)> done,
                                Wanted wanted, std::function<std::exception_ptr()> cancelled) {
    auto cancel = [done, cancelled] { done({}, cancelled()); };
    submit(onceTask<Result>(std::move(work), done, std::move(wanted), cancel), cancel);
}

} // namespace Media
