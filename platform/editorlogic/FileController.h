#pragma once

#include "platform/av/MediaInfo.h"

#include <QObject>
#include <QString>
#include <exception>
#include <functional>
#include <memory>

namespace Task {
class JobThread;
}

namespace Media {

class ICreatorFileParser;

// Opens and parses media files on a thread of its own. isBusy is emitted on that thread when
// work starts after a rest, isIdle there when the queue has run dry. The parser creator is
// borrowed and must outlive the controller.
class FileController : public QObject {
    Q_OBJECT
public:
    explicit FileController(ICreatorFileParser* parsers);
    ~FileController() override;

    // The controller constructed last that is still alive; null when there is none.
    static FileController* instance();

    ICreatorFileParser* parsers() const;
    void submit(std::function<void()> work);
    // What parsing a file gives: its description, or the failure that stopped it.
    using Parsed = std::function<void(const Velmor::AV::MediaInfo& info, std::exception_ptr error)>;

    // Opens and parses the file on the controller's thread and hands the description, or the
    // failure with an empty description, to done there.
    void parse(const QString& path, Parsed done);

signals:
    void isBusy();
    void isIdle();

private:
    ICreatorFileParser* parserCreator;
    std::unique_ptr<Task::JobThread> jobs;
};

} // namespace Media
