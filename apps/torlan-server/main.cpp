#include <langinfo.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <clocale>
#include <csignal>
#include <cstdio>

#include "host_t.h"
#include "logs/early_logger_t.h"
#include "signal_watch_t.h"

namespace {

using utility::logs::early_logger_t;

enum status_t { done = 0, failed = 1, usage = 2 };

/// In a locale that is not UTF-8, such as a container's bare one, Qt warns and takes UTF-8 anyway.
void use_utf8() {
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        qputenv("LC_ALL", "C.UTF-8");
    }
}

void print(std::FILE* _stream, const QString& _text) {
    std::fputs(qUtf8Printable(_text), _stream);
    std::fflush(_stream);
}

/// Lives until the process ends, by whatever way.
early_logger_t& early_log(const torlan::options_t& _options) {
    static early_logger_t logger;
    if (_options.stdout_level) {
        logger.set_level(static_cast<int>(*_options.stdout_level));
    }
    utility::logs::classlogs::setInstance(&logger);
    return logger;
}

int run(const torlan::options_t& _options) {
    torlan::signal_watch_t signal_watch;
    torlan::host_t host(_options, &early_log(_options));
    QObject::connect(&host, &torlan::host_t::waiting, &host, [](const QString& _sentence) {
        print(stdout, QStringLiteral("torlan: ") + _sentence + QLatin1Char('\n'));
    });
    bool asked = false;
    QObject::connect(&signal_watch, &torlan::signal_watch_t::asked_to_stop, &host, [&]() {
        asked = true;
        host.break_off();
        QCoreApplication::quit();
    });
    const QString error = host.start();
    if (asked) {
        return done;
    }
    if (!error.isEmpty()) {
        print(stderr, QStringLiteral("torlan: ") + error + QLatin1Char('\n'));
        return failed;
    }
    print(stdout, host.ready_text());
    QCoreApplication::exec();
    return done;
}

}  // namespace

int main(int _argc, char* _argv[]) {
    ::umask(077);
    // A reader of standard output that went away does not end the host.
    std::signal(SIGPIPE, SIG_IGN);
    use_utf8();
    const QCoreApplication application(_argc, _argv);
    QCoreApplication::setApplicationName(QStringLiteral("torlan-server"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TORLAN_VERSION));

    const torlan::options_result_t parsed = torlan::parse_options(QCoreApplication::arguments());
    if (!parsed.error.isEmpty()) {
        print(stderr, QStringLiteral("torlan: %1 See torlan-server --help.\n").arg(parsed.error));
        return usage;
    }
    if (!parsed.text.isEmpty()) {
        print(stdout, parsed.text);
        return done;
    }
    return run(parsed.options);
}
