#pragma once

namespace Resource {

class RedirectionTable;

// Owns a redirection table and writes it where it is kept.
class IRedirectionTableHolder {
public:
    IRedirectionTableHolder() = default;
    IRedirectionTableHolder(const IRedirectionTableHolder&) = delete;
    IRedirectionTableHolder& operator=(const IRedirectionTableHolder&) = delete;
    virtual ~IRedirectionTableHolder();

    virtual RedirectionTable& table() = 0;
    virtual const RedirectionTable& table() const = 0;
    virtual void flush() const = 0;
};

} // namespace Resource
