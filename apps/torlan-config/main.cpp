#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

#include "config_server_t.h"
#include "stop_signals_t.h"

namespace {

constexpr int failed = 1;

struct options_t {
    QString file;
    QString trigger;
    quint16 port = 0;
    QString error;  ///< empty, or one sentence
};

options_t read_options(const QCoreApplication& _application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Serves the settings of this machine over HTTP, on loopback only."));
    parser.addHelpOption();
    const QCommandLineOption file(QStringLiteral("file"),
                                  QStringLiteral("The settings; made when missing."),
                                  QStringLiteral("FILE"), QStringLiteral("settings.json"));
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("The port; 0 takes a free one."),
                                  QStringLiteral("N"), QStringLiteral("4321"));
    const QCommandLineOption trigger(QStringLiteral("trigger"),
                                     QStringLiteral("Runs after a PUT with ?runtriggers=true."),
                                     QStringLiteral("PROGRAM"));
    parser.addOptions({file, port, trigger});
    parser.process(_application);
    bool is_port = false;
    options_t options{parser.value(file), parser.value(trigger),
                      parser.value(port).toUShort(&is_port), QString()};
    if (!is_port) {
        options.error = QStringLiteral("--port %1 is not a port").arg(parser.value(port));
    } else if (!parser.positionalArguments().isEmpty()) {
        options.error =
            QStringLiteral("unknown argument %1").arg(parser.positionalArguments().first());
    }
    return options;
}

int fail(const QString& _sentence) {
    std::fprintf(stderr, "torlan-config: %s\n", qPrintable(_sentence));
    return failed;
}

}  // namespace

int main(int _argc, char** _argv) {
    QCoreApplication application(_argc, _argv);
    const options_t options = read_options(application);
    if (!options.error.isEmpty()) {
        return fail(options.error);
    }
    const stop_signals_t signals_of_end;
    QObject::connect(&signals_of_end, &stop_signals_t::stop_asked, &application,
                     &QCoreApplication::quit);
    config_server_t server(options.trigger);
    const QString error = server.start(options.file, options.port);
    if (!error.isEmpty()) {
        return fail(error);
    }
    if (server.is_file_new()) {
        std::fprintf(stderr, "torlan-config: made %s with empty settings\n",
                     qPrintable(options.file));
    }
    std::printf("torlan-config: ready on http://127.0.0.1:%u/\n", unsigned(server.port()));
    std::fflush(stdout);
    return application.exec();
}
