#include "options_t.h"

#include <QDir>

#include "program/version.h"

namespace torlan {

namespace {

QString help_text() {
    return QStringLiteral(
        "Usage: torlan-run [options] [options of torlan-server]\n"
        "Runs an installation until it is asked to end: torlan-config and torlan-server beside "
        "this\n"
        "program. Both end with it, whatever ends it, and are started again when they die.\n"
        "\n"
        "  --data DIR       data folder (default: var); made when it is missing\n"
        "  --config-port N  the configuration server's port (default: 4321)\n"
        "  --knx demo       a KNX bus without a wire, and programs that play the home's devices\n"
        "  --user NAME      run as the system account NAME, for good; only root can ask for it\n"
        "  -h, --help       show this text\n"
        "  -v, --version    show the version\n"
        "\n"
        "Everything else goes to torlan-server; see torlan-server --help.\n"
        "\n"
        "Status: 0 ended as asked (SIGINT, SIGTERM, SIGHUP, SIGQUIT), 1 it could not start or "
        "save\n"
        "everything, 2 the call was wrong. A sentence on standard error says which and why.\n");
}

/// One option at a time, as "--name value" or "--name=value".
class reader_t {
 public:
    explicit reader_t(const QStringList& _arguments) : left(_arguments.mid(1)) {}

    bool next() {
        if (left.isEmpty()) {
            return false;
        }
        whole = left.takeFirst();
        name = whole.section(QLatin1Char('='), 0, 0);
        return true;
    }
    bool is(const char* _name) const { return name == QLatin1String(_name); }
    /// With its value; nothing: it has none.
    QStringList with_value() {
        if (whole != name) {
            return {name, whole.section(QLatin1Char('='), 1)};
        }
        return left.isEmpty() ? QStringList() : QStringList{name, left.takeFirst()};
    }

    QString name;
    QString whole;

 private:
    QStringList left;
};

base::result_t take_port(const QString& _text, quint16* _port) {
    bool is_number = false;
    const uint number = _text.toUInt(&is_number);
    if (!is_number || number < 1 || number > 65535) {
        return base::result_t::failed(
            QStringLiteral("--config-port takes a number from 1 to 65535, not \"%1\".").arg(_text));
    }
    *_port = static_cast<quint16>(number);
    return {};
}

/// An option of this program's own, or one that must not come twice.
base::result_t take(reader_t* _reader, options_t* _options) {
    const QStringList pair = _reader->with_value();
    if (pair.isEmpty()) {
        return base::result_t::failed(QStringLiteral("%1 needs a value.").arg(_reader->name));
    }
    const QString& value = pair[1];
    if (_reader->is("--data")) {
        _options->data = value;
    } else if (_reader->is("--user")) {
        _options->user = value;
    } else if (_reader->is("--import")) {
        _options->once = pair;
    } else if (_reader->is("--knx")) {
        _options->is_knx_demo = value == QLatin1String("demo");
        _options->server += _options->is_knx_demo ? QStringList() : pair;
    } else {
        return take_port(value, &_options->config_port);
    }
    return {};
}

}  // namespace

base::result_of_t<options_t> parse_options(const QStringList& _arguments) {
    options_t options;
    reader_t reader(_arguments);
    while (reader.next()) {
        if (reader.is("-h") || reader.is("--help")) {
            options.to_show = help_text();
            return options;
        }
        if (reader.is("-v") || reader.is("--version")) {
            options.to_show = version_text();
            return options;
        }
        if (reader.is("--data") || reader.is("--user") || reader.is("--config-port") ||
            reader.is("--import") || reader.is("--knx")) {
            if (const base::result_t taken = take(&reader, &options); !taken.is_ok()) {
                return taken;
            }
        } else {
            options.server += reader.whole;
        }
    }
    options.data = QDir::cleanPath(QDir(options.data).absolutePath());
    return options;
}

}  // namespace torlan
