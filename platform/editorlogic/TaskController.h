#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace Task {

class JobThread;

// Runs the editor's background tasks one after another on a thread of its own. isBusy is
// emitted on that thread when a task starts after a rest, isIdle there when the queue has run
// dry.
class Controller : public QObject {
    Q_OBJECT
public:
    Controller();
    ~Controller() override;

    // The controller constructed last that is still alive; null when there is none.
    static Controller* instance();

    void submit(std::function<void()> task);

signals:
    void isBusy();
    void isIdle();

private:
    std::unique_ptr<JobThread> m_jobs;
};

} // namespace Task
