#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <mutex>

namespace Task {

class JobPool;
class JobThread;

// Runs the editor's background tasks: those given to submit one after another on a thread of
// their own, those given to submitConcurrent side by side on threads of their own (long jobs,
// such as exports, that a limit of their own keeps few). isBusy is emitted on a task thread
// when a task of either kind starts while none runs, isIdle there when every task has ended and
// none is queued.
class Controller : public QObject {
    Q_OBJECT
public:
    Controller();
    ~Controller() override;

    // The controller constructed last that is still alive; null when there is none.
    static Controller* instance();

    void submit(std::function<void()> task);
    // Starts the task at once on a thread of its own, waiting for no other task; the threads
    // are kept for later tasks.
    void submitConcurrent(std::function<void()> task);

signals:
    void isBusy();
    void isIdle();

private:
    void enter();
    void leave();

    std::mutex activity;
    int activeRunners = 0;
    std::unique_ptr<JobThread> jobs;
    std::unique_ptr<JobPool> concurrentJobs;
};

} // namespace Task
