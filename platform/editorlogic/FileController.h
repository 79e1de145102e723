#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace Task {
class JobThread;
}

namespace Media {

class ICreatorFileParser;

// Opens media files on a thread of its own. isBusy is emitted on that thread when work starts
// after a rest, isIdle there when the queue has run dry. The parser creator is borrowed and
// must outlive the controller.
class FileController : public QObject {
    Q_OBJECT
public:
    explicit FileController(ICreatorFileParser* parsers);
    ~FileController() override;

    // The controller constructed last that is still alive; null when there is none.
    static FileController* instance();

    ICreatorFileParser* parsers() const;
    void submit(std::function<void()> work);
    // Finds the parser for the file on the controller's thread and hands its name, empty when
    // none can read the file, to done there.
    void open(const QString& path, std::function<void(const QString& parser)> done);

signals:
    void isBusy();
    void isIdle();

private:
    ICreatorFileParser* m_parsers;
    std::unique_ptr<Task::JobThread> m_jobs;
};

} // namespace Media
