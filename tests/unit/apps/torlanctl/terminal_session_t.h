#pragma once

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

#include "unit/apps/torlanctl/torlanctl_t.h"

/// A call on a terminal of its own; the test types at the other end.
class terminal_session_t {
 public:
    terminal_session_t(const torlanctl_t& _torlanctl, const QStringList& _arguments)
        : keyboard(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (grantpt(keyboard) != 0 || unlockpt(keyboard) != 0) {
            return;
        }
        const QByteArray screen = ptsname(keyboard);
        process.setChildProcessModifier([screen] {
            setsid();
            const int terminal = open(screen.constData(), O_RDWR);
            ioctl(terminal, TIOCSCTTY, 0);
            dup2(terminal, STDIN_FILENO);
            dup2(terminal, STDERR_FILENO);
        });
        process.start(TORLANCTL, QStringList{"--data", _torlanctl.data()} + _arguments);
    }
    ~terminal_session_t() { close(keyboard); }
    Q_DISABLE_COPY_MOVE(terminal_session_t)

    /// Types after the prompt has come; returns all that the screen showed.
    QString answer(const QByteArray& _typed) {
        QByteArray shown = read_some();
        if (write(keyboard, _typed.constData(), size_t(_typed.size())) < 0) {
            return {};
        }
        process.waitForFinished();
        return QString::fromUtf8(shown + read_some());
    }

    QProcess process;

 private:
    QByteArray read_some() const {
        char buffer[256];
        const ssize_t count = read(keyboard, buffer, sizeof(buffer));
        return QByteArray(buffer, std::max<ssize_t>(count, 0));
    }

    const int keyboard;
};
