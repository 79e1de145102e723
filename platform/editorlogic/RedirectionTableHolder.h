#pragma once

#include "platform/editorlogic/IRedirectionTableHolder.h"
#include "platform/editorlogic/RedirectionTable.h"

namespace Resource {

// Keeps the redirection table in memory; flush() records that it would be written.
class RedirectionTableHolder : public IRedirectionTableHolder {
public:
    RedirectionTableHolder();
    ~RedirectionTableHolder() override;

    RedirectionTable& table() override;
    const RedirectionTable& table() const override;
    void flush() const override;

private:
    RedirectionTable redirections;
};

} // namespace Resource
