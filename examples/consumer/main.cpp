// Runs `consumer <script>`: each line "greet; --name=<name>" of the script becomes
// {"greeting": "Hello, <name>"} on stdout, through the library's script service and a service
// of this program's own.
#include "service/api/ServiceLoader.h"
#include "service/launcher/CLILauncher.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"
#include "service/requests/OptionField.h"
#include "service/services/ScriptService.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

struct GreetRequest : EditorService::DefaultRequestImpl<GreetRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<GreetRequest>;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        EditorService::visitField(archive, name,
                                  QCommandLineOption(QStringLiteral("name"),
                                                     QStringLiteral("Whom to greet."),
                                                     QStringLiteral("name")));
    }

    QString name;
};

class GreetService : public EditorService::DefaultServiceImpl<GreetRequest> {
public:
    using DefaultServiceImpl<GreetRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<GreetRequest>& requests) override {
        return requests
            .map([](const GreetRequest& request) {
                return nlohmann::json{{"greeting", "Hello, " + request.name.toStdString()}};
            })
            .as_dynamic();
    }
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    CLILauncher launcher;
    auto loader = std::make_shared<EditorService::ServiceLoader>();
    loader->registerService(QStringLiteral("greet"), QStringLiteral("Greet --name"),
                            [](std::weak_ptr<const EditorService::ServiceLoader>) {
                                return std::make_shared<GreetService>();
                            });
    EditorService::ScriptService script(loader);
    int status = 0;
    script.run(QCoreApplication::arguments())
        .subscribe([](const nlohmann::json& value) { std::printf("%s\n", value.dump().c_str()); },
                   [&status](std::exception_ptr error) {
                       try {
                           std::rethrow_exception(error);
                       } catch (const std::exception& failure) {
                           std::fprintf(stderr, "%s\n", failure.what());
                       }
                       status = 1;
                       QCoreApplication::exit();
                   },
                   [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    return status;
}
