#include <QProcess>
#include <QSet>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

// The generic bases' instantiations that the services library exports: each must carry its
// own special members and virtual table, so that a library built against the headers calls
// these and makes no copies of its own. Read from the built library's symbol table.

namespace {

// The demangled names that the library defines (any symbol type but undefined).
QSet<QString> definedSymbols() {
    QProcess nm;
    nm.start(QStringLiteral(EDITORSERVICE_NM),
             {QStringLiteral("-C"), QStringLiteral(EDITORSERVICE_SERVICES_LIBRARY)});
    if (!nm.waitForFinished(60000) || nm.exitCode() != 0)
        return {};
    QSet<QString> names;
    for (const QString& line : QString::fromUtf8(nm.readAllStandardOutput()).split('\n')) {
        // "<address> <type> <name>"; an undefined symbol has no address.
        const int typeAt = line.indexOf(' ');
        if (typeAt < 1 || line.size() < typeAt + 3 || line.at(typeAt + 1) == 'U')
            continue;
        names.insert(line.mid(typeAt + 3));
    }
    return names;
}

// The special members and the virtual table of EditorService::<name><EditorService::<request>>,
// as nm -C spells them.
QStringList specialMembers(const QString& name, const QString& request, bool movable) {
    const QString type = QStringLiteral("EditorService::%1<EditorService::%2>").arg(name, request);
    QStringList members{
        QStringLiteral("%1::%2()").arg(type, name),
        QStringLiteral("%1::%2(%1 const&)").arg(type, name),
        QStringLiteral("%1::operator=(%1 const&)").arg(type),
        QStringLiteral("%1::~%2()").arg(type, name),
        QStringLiteral("vtable for %1").arg(type),
    };
    if (movable) {
        members << QStringLiteral("%1::%2(%1&&)").arg(type, name)
                << QStringLiteral("%1::operator=(%1&&)").arg(type);
    }
    return members;
}

class ExportedInstantiationsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { symbols = new QSet<QString>(definedSymbols()); }
    static void TearDownTestSuite() {
        delete symbols;
        symbols = nullptr;
    }

    static void expectDefined(const QStringList& members) {
        ASSERT_FALSE(symbols->isEmpty())
            << "nm gave no symbols for " EDITORSERVICE_SERVICES_LIBRARY;
        for (const QString& member : members)
            EXPECT_TRUE(symbols->contains(member)) << member.toStdString();
    }

    static QSet<QString>* symbols;
};

QSet<QString>* ExportedInstantiationsTest::symbols = nullptr;

TEST_F(ExportedInstantiationsTest, RequestBaseOfScriptRequestCarriesItsSpecialMembers) {
    expectDefined(specialMembers("DefaultRequestImpl", "ScriptRequest", true));
}

TEST_F(ExportedInstantiationsTest, ServiceBaseOfScriptRequestCarriesItsSpecialMembers) {
    expectDefined(specialMembers("DefaultServiceImpl", "ScriptRequest", true));
}

TEST_F(ExportedInstantiationsTest, SerializerBaseOfTimeoutRequestCarriesItsSpecialMembers) {
    expectDefined(specialMembers("DefaultRequestSerializer", "TimeoutRequest", false));
}

} // namespace
