#pragma once

#include <QString>
#include <memory>

namespace Resource {

class IRedirectionTableHolder;

// Finds the editor's resources, following the redirections of the table it owns.
class Controller {
public:
    explicit Controller(std::unique_ptr<IRedirectionTableHolder> redirections);
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();

    QString locate(const QString& path) const;
    IRedirectionTableHolder& redirections() const;

private:
    std::unique_ptr<IRedirectionTableHolder> holder;
};

} // namespace Resource
