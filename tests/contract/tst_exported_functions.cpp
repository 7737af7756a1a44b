// Every public function of the plugin's classes can be resolved by name, as other modules of the
// server do: it stands in the symbol table of the built library, and not only where it was inlined.
#include <cxxabi.h>

#include <QDirIterator>
#include <QSet>
#include <QTest>
#include <algorithm>
#include <iterator>
#include <memory>

#include "contract/support/elf_dynamic_t.h"
#include "contract/support/public_functions.h"

namespace {

QString text_of(const QString& _path) {
    QFile file(_path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(_path));
    }
    return QString::fromUtf8(file.readAll());
}

QString demangled(const QByteArray& _symbol) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(_symbol.constData(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? QString::fromLatin1(text.get()) : QString();
}

/// The functions that the library defines for good: an inline one is weak, and may be missing in
/// an optimised build.
QSet<QString> defined_functions() {
    QSet<QString> found;
    const auto library = support::elf_dynamic_t::read(QStringLiteral(PLUGIN_PATH));
    for (const auto& symbol : library.symbols) {
        if (symbol.is_defined && symbol.binding == STB_GLOBAL && symbol.type == STT_FUNC) {
            found.insert(demangled(symbol.name));
        }
    }
    return found;
}

QStringList listed_functions() {
    return text_of(QStringLiteral(EXPORTED_FUNCTIONS)).split(u'\n', Qt::SkipEmptyParts);
}

/// What is in one list and not, or not as often, in the other; one a line.
QString difference(QStringList _all, QStringList _others) {
    std::sort(_all.begin(), _all.end());
    std::sort(_others.begin(), _others.end());
    QStringList left;
    std::set_difference(_all.begin(), _all.end(), _others.begin(), _others.end(),
                        std::back_inserter(left));
    return left.join(u'\n');
}

}  // namespace

class tst_exported_functions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_listed_function_is_in_the_library() {
        QVERIFY(!listed_functions().isEmpty());
        QCOMPARE(difference(listed_functions(), defined_functions().values()), QString());
    }

    void every_public_function_is_listed() {
        QStringList declared;
        QDirIterator headers(QStringLiteral(SERVER_SOURCES), {QStringLiteral("*.h")}, QDir::Files,
                             QDirIterator::Subdirectories);
        while (headers.hasNext()) {
            const QString header = headers.next();
            // The bus driver's, another library.
            if (!header.contains(QLatin1String("/plugin_driver_knx/")) &&
                !header.endsWith(QLatin1String("/plugin_driver_IBus.h"))) {
                declared += support::public_functions(text_of(header));
            }
        }
        QStringList listed;
        for (const QString& function : listed_functions()) {
            // A conversion to it is spelled the other way round in the sources.
            listed.append(
                function.left(function.indexOf(u'('))
                    .replace(QLatin1String("QString const&"), QLatin1String("const QString&")));
        }
        QVERIFY(!declared.isEmpty());
        QCOMPARE(difference(declared, listed), QString());
        QCOMPARE(difference(listed, declared), QString());
    }

    void declarations_are_found_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QStringList>("functions");
        const auto row = [](const char* name, const char* header, const QStringList& functions) {
            QTest::newRow(name) << QString::fromLatin1(header) << functions;
        };
        row("public ones", "namespace n { class a { void b(); public: int c() const; }; }",
            {"n::a::c"});
        row("of a nested namespace", "namespace n::m {\nclass a : public b {\n public:\n a(); };}",
            {"n::m::a::a"});
        row("inline ones", "class a { public: a(int x) : y{x} {} int c() { if (d()) {} } };",
            {"a::a", "a::c"});
        row("overloads", "class a { public: void c(int); void c(bool = false); };",
            {"a::c", "a::c"});
        row("operators",
            "class a { public: bool operator==(a) const; operator const b&() const; };",
            {"a::operator==", "a::operator const b&"});
        row("destructors", "class a { public: virtual ~a() = default; };", {"a::~a"});
        row("of structs", "struct a { int x = 0; void c(); private: void d(); };", {"a::c"});
        row("signals and slots",
            "class a { Q_OBJECT\n Q_SIGNALS: void c(); public Q_SLOTS: void d(); private Q_SLOTS: "
            "void e(); };",
            {"a::c", "a::d"});
        row("annotated ones", "class a { public: void c() TORLAN_EXCLUDES(m) ; T x TORLAN_X(m); };",
            {"a::c"});
        row("neither pure nor deleted",
            "class a { public: virtual void c() = 0; a(a&) = delete; };", {});
        row("no templates",
            "class a { public: template <class T> void c(T t) {} };\n"
            "template <class T> class b { public: void c(); };",
            {});
        row("no variables", "class a { public: inline static const b c = d(1); e f; };", {});
        row("no comments", "class a { public: // void c();\n void d(); };", {"a::d"});
        row("of private classes", "class a { struct b { void c(); }; };", {});
    }
    void declarations_are_found() {
        QFETCH(QString, header);
        QFETCH(QStringList, functions);
        QCOMPARE(support::public_functions(header), functions);
    }
};

QTEST_GUILESS_MAIN(tst_exported_functions)
#include "tst_exported_functions.moc"
