#include "supervisor_t.h"

#include "program/exit_status_t.h"

namespace torlan {

using process::supervised_process_t;

namespace {

constexpr std::chrono::seconds config_starts_in(20);
constexpr std::chrono::seconds config_ends_in(5);
constexpr std::chrono::seconds server_ends_in(30);

/// "it has ended with status 1".
QString ending_of(const supervised_process_t& _child) {
    const std::optional<int> code = _child.exit_code();
    return code ? QStringLiteral("ended with status %1").arg(*code)
                : QStringLiteral("was ended by a signal");
}

}  // namespace

supervisor_t::supervisor_t(const options_t& _options, const std::optional<web_t>& _web,
                           const QString& _programs, const QString& _settings, QObject* _parent)
    : QObject(_parent), options(_options), web(_web), programs(_programs), settings(_settings) {
    set_up_connections();
    if (options.is_knx_demo) {
        set_up_demo();
    }
}

void supervisor_t::set_up_demo() {
    demo = std::make_unique<knx_demo_t>(options.data, programs);
    connect(demo.get(), &knx_demo_t::told, this, &supervisor_t::told);
    connect(demo.get(), &knx_demo_t::failed, this, [this](const QString& _sentence) {
        Q_EMIT told(_sentence);
        finish(status_failed);
    });
}

void supervisor_t::set_up_connections() {
    connect(&config_link, &child_link_t::ready, this, [this](qint64 _process) {
        if (_process == config.process_id() && config.set_ready()) {
            on_config_ready();
        }
    });
    connect(&server, &supervised_process_t::launched, this,
            [this]() { server_process = server.process_id(); });
    connect(&server_link, &child_link_t::ready, this, [this](qint64 _process) {
        // One that has ended right after it had said so was ready all the same.
        if (_process == server_process) {
            server.set_ready();
            on_server_ready();
        }
    });
    connect(&console, &console_child_t::settled, this, &supervisor_t::launch_server);
    connect(&console, &console_child_t::told, this, &supervisor_t::told);
    connect(&config, &supervised_process_t::failed, this, &supervisor_t::on_config_failed);
    connect(&config, &supervised_process_t::died, this, &supervisor_t::on_config_died);
    connect(&server, &supervised_process_t::failed, this, &supervisor_t::on_server_failed);
    connect(&server, &supervised_process_t::died, this, &supervisor_t::on_server_died);
}

process::child_settings_t supervisor_t::settings_of(const QString& _program,
                                                    const QStringList& _arguments,
                                                    const child_link_t& _link) const {
    process::child_settings_t child;
    child.program = programs + QLatin1Char('/') + _program;
    child.arguments =
        QStringList{QStringLiteral("--supervisor"), QString::number(_link.descriptor())} +
        _arguments;
    child.inherited = {_link.descriptor()};
    child.writes_itself = true;
    return child;
}

void supervisor_t::start() {
    if (demo) {
        demo->start();
    }
    // Without its bus it has ended already.
    if (!is_finished) {
        start_config();
    }
}

void supervisor_t::start_config() {
    process::child_settings_t child =
        settings_of(QStringLiteral("torlan-config"),
                    {QStringLiteral("--file"), settings, QStringLiteral("--port"),
                     QString::number(options.config_port)},
                    config_link);
    child.start_timeout = config_starts_in;
    child.not_ready =
        QStringLiteral("it was not ready on port %1 within %2 s")
            .arg(QString::number(options.config_port), QString::number(config_starts_in.count()));
    child.stop_timeout = config_ends_in;
    config.start(child);
}

void supervisor_t::on_config_ready() {
    if (server.state() == supervised_process_t::state_t::stopped && !served) {
        if (web) {
            console.start(programs + QStringLiteral("/torlan-web"), *web,
                          options.data + QStringLiteral("/console.json"));
        } else {
            launch_server();
        }
    } else {
        Q_EMIT told(QStringLiteral("the configuration server had ended and was started again."));
    }
}

QStringList supervisor_t::console_arguments() const {
    if (!web || !console.is_up()) {
        return {};
    }
    QStringList arguments{QStringLiteral("--console"), web->address()};
    if (!options.ws_port) {
        arguments += {QStringLiteral("--ws-port"), QString::number(web->ws_port)};
    }
    return arguments;
}

QStringList supervisor_t::server_arguments() const {
    // What counts once is done when it has been ready.
    return QStringList{QStringLiteral("--supervisor"),  QString::number(server_link.descriptor()),
                       QStringLiteral("--data"),        options.data,
                       QStringLiteral("--config-port"), QString::number(options.config_port)} +
           console_arguments() + options.server +
           (demo ? QStringList{QStringLiteral("--knx"), demo->url()} : QStringList()) +
           (served ? QStringList() : options.once);
}

void supervisor_t::launch_server() {
    process::child_settings_t child = settings_of(QStringLiteral("torlan-server"), {}, server_link);
    child.arguments = server_arguments();
    // An import may take as long as whoever writes the file.
    child.start_timeout = std::chrono::milliseconds(0);
    child.stop_timeout = server_ends_in;
    server.start(child);
}

void supervisor_t::on_server_ready() {
    if (served) {
        Q_EMIT told(QStringLiteral("the server had ended and was started again."));
        return;
    }
    served = true;
    server.set_arguments(server_arguments());
    if (demo) {
        demo->start_house();
    }
}

void supervisor_t::on_config_failed(const QString& _last_words) {
    // One that has ended by itself has said why.
    if (!_last_words.isEmpty()) {
        Q_EMIT told(
            QStringLiteral("the configuration server could not be started: %1.").arg(_last_words));
    }
    finish(status_failed);
}

void supervisor_t::on_config_died() {
    Q_EMIT told(
        QStringLiteral("the configuration server %1; it is started again.").arg(ending_of(config)));
}

void supervisor_t::on_server_failed(const QString& _last_words) {
    server_link.read_all();
    const std::optional<int> code = server.exit_code();
    if (served && code != status_done && code != status_unsaved) {
        on_server_died();
        launch_server();
        return;
    }
    if (!code || !_last_words.isEmpty()) {
        Q_EMIT told(QStringLiteral("the server could not be started: %1.")
                        .arg(_last_words.isEmpty() ? QStringLiteral("it ") + ending_of(server)
                                                   : _last_words));
    }
    // It ends with 0 when somebody asked it to.
    finish(code.value_or(status_failed));
}

void supervisor_t::on_server_died() {
    const std::optional<int> code = server.exit_code();
    if (code == status_done || code == status_unsaved) {
        Q_EMIT told(QStringLiteral("the server was asked to end."));
        finish(*code);
        return;
    }
    Q_EMIT told(QStringLiteral("the server %1; it is started again.").arg(ending_of(server)));
}

void supervisor_t::finish(int _status) {
    is_finished = true;
    end_all();
    Q_EMIT ended(_status);
}

int supervisor_t::stop() {
    stopped = true;
    return end_all();
}

int supervisor_t::end_all() {
    server_link.read_all();
    const bool runs = server.process_id() != 0;
    server.stop();
    console.stop();
    config.stop();
    if (demo) {
        demo->stop();
    }
    if (!runs) {
        return status_done;
    }
    if (!server.exit_code()) {
        Q_EMIT told(QStringLiteral("the server did not end within %1 s and was killed; what it had "
                                   "not saved is lost.")
                        .arg(server_ends_in.count()));
    }
    return server.exit_code().value_or(status_failed);
}

}  // namespace torlan
