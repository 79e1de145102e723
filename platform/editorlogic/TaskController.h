#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <mutex>

namespace Task {

class Workers;

// Runs the editor's background tasks: those given to submit one after another on a thread of
// their own, those given to submitConcurrent side by side on threads of their own (long jobs,
// such as exports, that a limit of their own keeps few). isBusy is emitted on a task thread
// when a task of either kind starts while none runs, isIdle there when every task has ended and
// none is queued; they alternate, and neither is emitted once the destructor has begun. Both are
// emitted with the controller's own signal lock held and no queue's: a directly connected slot
// may submit tasks but must not wait for a task. The destructor waits for the running tasks and
// drops the queued ones: each dropped task's `dropped` is called after the running tasks ended, on
// the destroying thread.
class Controller : public QObject {
    Q_OBJECT
public:
    Controller();
    ~Controller() override;

    // The controller constructed last that is still alive; null when there is none.
    static Controller* instance();

    // Exactly one of `task` and `dropped` (when given) is called: `dropped` when the
    // controller goes before the task ran.
    void submit(std::function<void()> task, std::function<void()> dropped = nullptr);
    // Starts the task at once on a thread of its own, waiting for no other task; the threads
    // are kept for later tasks. `dropped` as for submit.
    void submitConcurrent(std::function<void()> task, std::function<void()> dropped = nullptr);

signals:
    void isBusy();
    void isIdle();

private:
    void enter();
    void leave();

    std::mutex activity;
    int activeRunners = 0;
    bool silenced = false;
    std::unique_ptr<Workers> jobs;
    std::unique_ptr<Workers> concurrentJobs;
};

} // namespace Task
