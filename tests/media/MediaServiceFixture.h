#pragma once

#include "platform/foundation/CallLog.h"
#include "platform/package/PackageDirectory.h"
#include "service/contexts/GlobalContextProvider.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace EditorService::Testing {

// A media service run in process: a package directory of the test's own, an empty call log,
// and a provider built only when the test asks for one, with its command line.
// The requests as a stream, one after the other.
template <class R> rxcpp::observable<R> each(const std::vector<R>& requests) {
    return rxcpp::observable<>::create<R>([requests](rxcpp::subscriber<R> subscriber) {
        for (const R& request : requests)
            subscriber.on_next(request);
        subscriber.on_completed();
    });
}

class MediaServiceFixture : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(packages.isValid());
        ASSERT_TRUE(scratch.isValid());
        Package::setPackageDirectory(packages.path());
        Velmor::Testing::CallLog::clear();
    }
    void TearDown() override {
        provider.reset();
        Package::setPackageDirectory(QString());
    }

    void startProvider(const QStringList& options = {}) {
        provider.emplace(QStringList{"app"} + options);
    }

    static QString fixture(const std::string& name) {
        return QString::fromStdString(mediaFixture(name));
    }
    QString scratchFile(const QString& name) const { return scratch.filePath(name); }

    static int countOf(const std::string& entry) {
        const auto entries = Velmor::Testing::CallLog::entries();
        return static_cast<int>(std::count(entries.begin(), entries.end(), entry));
    }

    std::optional<GlobalContextProvider> provider;

private:
    QTemporaryDir packages;
    QTemporaryDir scratch;
};

} // namespace EditorService::Testing
