#include "program/supervisor_link_t.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCommandLineParser>
#include <QSocketNotifier>
#include <cerrno>

namespace torlan {

namespace {

const QString option = QStringLiteral("supervisor");

bool is_socket(int _descriptor) {
    struct stat status = {};
    return _descriptor > STDERR_FILENO && ::fstat(_descriptor, &status) == 0 &&
           S_ISSOCK(status.st_mode);
}

}  // namespace

supervisor_link_t::supervisor_link_t(int _descriptor, QObject* _parent) : QObject(_parent) {
    if (!is_socket(_descriptor)) {
        return;
    }
    descriptor = _descriptor;
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &supervisor_link_t::on_readable);
}

supervisor_link_t::~supervisor_link_t() {
    delete notifier;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

void supervisor_link_t::tell_ready() const {
    if (is_supervised()) {
        const QByteArray line = QByteArray::number(qint64(::getpid())) + '\n';
        [[maybe_unused]] const ssize_t sent =
            ::send(descriptor, line.constData(), size_t(line.size()), MSG_NOSIGNAL);
    }
}

void supervisor_link_t::on_readable() {
    char ignored[64];
    const ssize_t count = ::recv(descriptor, ignored, sizeof ignored, MSG_DONTWAIT);
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
        notifier->setEnabled(false);
        Q_EMIT supervisor_gone();
    }
}

void add_supervisor_option(QCommandLineParser* _parser) {
    QCommandLineOption hidden(option, QString(), QStringLiteral("N"));
    hidden.setFlags(QCommandLineOption::HiddenFromHelp);
    _parser->addOption(hidden);
}

int supervisor_descriptor(const QCommandLineParser& _parser) {
    bool is_number = false;
    const int number = _parser.value(option).toInt(&is_number);
    return is_number ? number : -1;
}

}  // namespace torlan
