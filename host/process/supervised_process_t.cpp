#include "process/supervised_process_t.h"

#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace process {

namespace {

/// In bytes; what is longer is taken for several lines, so that nothing piles up.
constexpr qint64 longest_line = 64 * 1024;

/// No further than an administrator allows.
void allow_descriptors(rlim_t _count) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < _count) {
        limit.rlim_cur = std::min(_count, limit.rlim_max);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

/// Runs in the child, between fork and exec.
void become(const std::optional<system_account_t>& _account, pid_t _parent) {
    if (_account && (::setgroups(0, nullptr) != 0 || ::setgid(_account->group) != 0 ||
                     ::setuid(_account->user) != 0)) {
        ::_exit(126);
    }
    // After the change of account, which clears it.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != _parent) {
        ::_exit(127);
    }
}

}  // namespace

supervised_process_t::supervised_process_t(QObject* _parent)
    : QObject(_parent),
      child(this),
      limit(this),
      restart(this),
      backoff(settings.restart_shortest, settings.restart_longest) {
    limit.setSingleShot(true);
    restart.setSingleShot(true);
    connect(&limit, &QTimer::timeout, this, &supervised_process_t::on_late);
    connect(&restart, &QTimer::timeout, this, [this]() { launch(state_t::restarting); });
    connect(&child, &QProcess::readyRead, this, [this]() { read_output(false); });
    connect(&child, &QProcess::finished, this, [this]() {
        read_output(true);
        on_ended();
    });
    connect(&child, &QProcess::errorOccurred, this, [this](QProcess::ProcessError _error) {
        if (_error == QProcess::FailedToStart) {
            last_words = child.errorString();
            on_ended();
        }
    });
}

supervised_process_t::~supervised_process_t() {
    stop();
}

void supervised_process_t::start(const child_settings_t& _settings) {
    stop();
    settings = _settings;
    backoff = base::backoff_t(settings.restart_shortest, settings.restart_longest);
    child.setProgram(settings.program);
    child.setProcessChannelMode(settings.writes_itself ? QProcess::ForwardedChannels
                                                       : QProcess::MergedChannels);
    // Not the host's, which may be a terminal.
    child.setStandardInputFile(QProcess::nullDevice());
    launch(state_t::starting);
}

void supervised_process_t::launch(state_t _state) {
    now = _state;
    last_words.clear();
    child.setArguments(settings.arguments);
    child.setChildProcessModifier([account = settings.account, inherited = settings.inherited,
                                   descriptors = rlim_t(settings.descriptors),
                                   parent = ::getpid()]() {
        allow_descriptors(descriptors);
        for (const int descriptor : inherited) {  // -1 does nothing
            ::fcntl(descriptor, F_SETFD, 0);
        }
        become(account, parent);
    });
    if (settings.start_timeout.count() > 0) {
        limit.start(settings.start_timeout);
    }
    Q_EMIT launching();
    child.start(QIODevice::ReadOnly);
    if (is_launched() && process_id() != 0) {
        Q_EMIT launched();
    }
}

void supervised_process_t::set_arguments(const QStringList& _arguments) {
    settings.arguments = _arguments;
}

std::optional<int> supervised_process_t::exit_code() const {
    return child.exitStatus() == QProcess::NormalExit ? std::optional<int>(child.exitCode())
                                                      : std::nullopt;
}

bool supervised_process_t::set_ready() {
    if (!is_launched()) {
        return false;
    }
    now = state_t::ready;
    limit.stop();
    backoff.reset();
    return true;
}

void supervised_process_t::on_late() {
    read_output(true);
    last_words = settings.not_ready;
    child.kill();
}

void supervised_process_t::on_ended() {
    const state_t before = now;
    limit.stop();
    if (before == state_t::stopped) {
        return;
    }
    if (before == state_t::starting) {
        now = state_t::stopped;
        Q_EMIT failed(last_words);
        return;
    }
    now = state_t::pausing;
    restart.start(backoff.next());
    Q_EMIT died(before == state_t::ready);
}

void supervised_process_t::read_output(bool _to_the_end) {
    while (child.canReadLine() || child.bytesAvailable() > (_to_the_end ? 0 : longest_line)) {
        const QString line = QString::fromUtf8(child.readLine(longest_line)).trimmed();
        last_words = settings.words != nullptr ? settings.words(line) : line;
        Q_EMIT said(last_words);
    }
}

void supervised_process_t::stop() {
    now = state_t::stopped;
    limit.stop();
    restart.stop();
    if (child.state() == QProcess::NotRunning) {
        return;
    }
    child.terminate();
    if (!child.waitForFinished(int(settings.stop_timeout.count()))) {
        child.kill();
        child.waitForFinished();
    }
}

}  // namespace process
