#include <langinfo.h>
#include <QCoreApplication>
#include <clocale>

#include "command_line_t.h"
#include "standard_streams.h"

namespace {

enum status_t { done = 0, refused = 1, usage = 2 };

/// Qt writes a warning of four lines to standard error in a locale that is not UTF-8, such as the
/// bare one of a container, and takes UTF-8 anyway.
void use_utf8() {
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        qputenv("LC_ALL", "C.UTF-8");
    }
}

int finish(const database::store::result_t& _result) {
    if (!_result.ok()) {
        torlanctl::write_message("torlanctl: " + _result.error + "\n");
    }
    return _result.ok() ? done : refused;
}

}  // namespace

int main(int _argc, char* _argv[]) {
    torlanctl::secure_standard_streams();
    use_utf8();
    const QCoreApplication application(_argc, _argv);
    QCoreApplication::setApplicationName("torlanctl");
    QCoreApplication::setApplicationVersion(TORLAN_VERSION);

    torlanctl::command_line_t line;
    const QString error = line.parse(QCoreApplication::arguments());
    if (!error.isEmpty()) {
        torlanctl::write_message("torlanctl: " + error + " See torlanctl --help.\n");
        return usage;
    }
    if (line.wants_help()) {
        return finish(torlanctl::write_output(line.help().toUtf8()));
    }
    if (line.wants_version()) {
        return finish(torlanctl::write_output("torlanctl " TORLAN_VERSION "\n"));
    }
    return finish(line.run());
}
