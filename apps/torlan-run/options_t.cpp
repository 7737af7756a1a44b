#include "options_t.h"

#include <QDir>
#include <algorithm>

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
        "  --web-port N     the console's port (default: 4322, or a free one), a page for browsers "
        "on\n"
        "                   127.0.0.1; WebSockets are on then (default: 9001, or a free one)\n"
        "  --no-web         no console\n"
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
    bool is_one_of(std::initializer_list<const char*> _names) const {
        return std::any_of(_names.begin(), _names.end(),
                           [this](const char* _name) { return is(_name); });
    }
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

std::optional<quint16> port_of(const QString& _text) {
    bool is_number = false;
    const quint16 number = _text.toUShort(&is_number);
    return is_number ? std::optional<quint16>(number) : std::nullopt;
}

base::result_t take_port(const QStringList& _pair, quint16* _port) {
    const std::optional<quint16> port = port_of(_pair[1]);
    if (port.value_or(0) == 0) {
        return base::result_t::failed(
            QStringLiteral("%1 takes a number from 1 to 65535, not \"%2\".")
                .arg(_pair[0], _pair[1]));
    }
    *_port = *port;
    return {};
}

/// What the server reads and judges, and this program has to know.
void look_at(const QStringList& _pair, options_t* _options) {
    if (_pair[0] == QLatin1String("--port")) {
        _options->port = port_of(_pair[1]);
    } else if (_pair[0] == QLatin1String("--ws-port")) {
        _options->ws_port = port_of(_pair[1]);
    }
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
    } else if (_reader->is("--config-port")) {
        return take_port(pair, &_options->config_port);
    } else if (_reader->is("--web-port")) {
        return take_port(pair, &_options->web_port.emplace(quint16(0)));
    } else {
        look_at(pair, _options);
        _options->server += pair;
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
        if (reader.whole == QLatin1String("--no-web")) {
            options.no_web = true;
        } else if (reader.is_one_of({"--data", "--user", "--config-port", "--import", "--knx",
                                     "--web-port", "--port", "--ws-port"})) {
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
