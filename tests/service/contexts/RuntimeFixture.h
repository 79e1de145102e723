#pragma once

#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace EditorService::Testing {

// A clean runtime for each test: no armed probes, an empty call log, OpenGL down, and a
// package directory and a fonts location of the test's own.
class RuntimeFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    QString packageDirectory() const;
    QString fontsDirectory() const;
    // Writes a package manifest {"name": name} into the package directory.
    void addPackage(const QString& name) const;

    // The call log, only the entries named.
    static std::vector<std::string> only(const std::vector<std::string>& wanted);
    // The call log, only the entries that start with the prefix.
    static std::vector<std::string> startingWith(const std::string& prefix);
    static int count(const std::string& entry);
    // "Engine", "Media", "Content", "Render" in the order their contexts began to be built,
    // and in the order they were torn down.
    static std::vector<std::string> contextsBuilt();
    static std::vector<std::string> contextsDestroyed();

    // Whether the calling thread's event loop ran while action did: a queued call posted just
    // before it reports so. The call is flushed afterwards either way.
    static bool spinsEventLoop(const std::function<void()>& action);

private:
    QTemporaryDir root;
    QByteArray dataHome;
};

} // namespace EditorService::Testing
