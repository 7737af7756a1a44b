#include "console_child_t.h"

namespace torlan {

using process::supervised_process_t;

namespace {
constexpr std::chrono::seconds starts_in(20);
}

console_child_t::console_child_t(QObject* _parent) : QObject(_parent) {
    connect(&link, &child_link_t::ready, this, [this](qint64 _process) {
        if (_process != child.process_id() || !child.set_ready()) {
            return;
        }
        if (was_ready) {
            Q_EMIT told(QStringLiteral("the console had ended and was started again."));
            return;
        }
        was_ready = true;
        Q_EMIT settled();
    });
    connect(&child, &supervised_process_t::failed, this, [this](const QString& _last_words) {
        Q_EMIT told(
            QStringLiteral("there is no console: its server could not be started%1.")
                .arg(_last_words.isEmpty() ? QString() : QStringLiteral(", ") + _last_words));
        Q_EMIT settled();
    });
    connect(&child, &supervised_process_t::died, this, [this](bool _was_ready) {
        if (_was_ready) {
            Q_EMIT told(QStringLiteral("the console's server has ended; it is started again."));
        }
    });
}

void console_child_t::start(const QString& _program, const web_t& _web, const QString& _facts) {
    process::child_settings_t settings;
    settings.program = _program;
    settings.arguments = {QStringLiteral("--supervisor"), QString::number(link.descriptor()),
                          QStringLiteral("--pages"),      _web.pages,
                          QStringLiteral("--facts"),      _facts,
                          QStringLiteral("--port"),       QString::number(_web.port),
                          QStringLiteral("--ws-port"),    QString::number(_web.ws_port)};
    settings.inherited = {link.descriptor()};
    settings.writes_itself = true;
    settings.start_timeout = starts_in;
    settings.not_ready = QStringLiteral("it was not ready within %1 s").arg(starts_in.count());
    child.start(settings);
}

}  // namespace torlan
