#include "service/api/Error.h"

#include "service/api/HelpException.h"

#include <gtest/gtest.h>
#include <type_traits>

using namespace EditorService;

TEST(ErrorTest, CarriesItsUtf8MessageThroughCopies) {
    const Error error(QStringLiteral("Größe \"%1\"").arg(3).toStdString());
    const Error copy(error);
    EXPECT_STREQ(copy.what(), "Größe \"3\"");
    EXPECT_TRUE((std::is_base_of_v<std::exception, Error>));
}

TEST(ErrorTest, HelpExceptionIsARuntimeErrorWithTheWholeHelpText) {
    const CLI::HelpException help(QStringLiteral("Usage: x\n\nOptions:\n"));
    const CLI::HelpException copy(help);
    EXPECT_STREQ(copy.what(), "Usage: x\n\nOptions:\n");
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, CLI::HelpException>));
}
