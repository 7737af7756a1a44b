#include "trigger_runner_t.h"

#include "program/say.h"

namespace torlan {

trigger_runner_t::trigger_runner_t(const QString& _program, QObject* _parent)
    : QObject(_parent), program(_program) {
    // Standard output carries the ready line only.
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    limit.setSingleShot(true);
    limit.setInterval(default_limit_ms);
    connect(&limit, &QTimer::timeout, &process, &QProcess::kill);
    connect(&process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        on_end(status == QProcess::NormalExit && code == 0);
    });
    connect(&process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            on_end(false);
        }
    });
}

trigger_runner_t::~trigger_runner_t() {
    process.disconnect(this);
    process.kill();
    process.waitForFinished();
}

void trigger_runner_t::run() {
    if (program.isEmpty()) {
        return;
    }
    if (process.state() != QProcess::NotRunning) {
        is_asked_again = true;
        return;
    }
    start();
}

void trigger_runner_t::start() {
    is_asked_again = false;
    limit.start();
    process.start(program, QStringList());
}

void trigger_runner_t::on_end(bool _success) {
    limit.stop();
    if (!_success) {
        say(stderr, QStringLiteral("the trigger %1 failed").arg(program));
    }
    Q_EMIT ran(_success);
    if (is_asked_again) {
        start();
    }
}

}  // namespace torlan
