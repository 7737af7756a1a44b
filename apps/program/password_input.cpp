#include "program/password_input.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>
#include <QFile>
#include <QStringDecoder>
#include <array>
#include <csignal>

#include "program/file_reader_t.h"
#include "program/standard_streams.h"

namespace torlan {

namespace {

/// More than the longest password takes in UTF-8.
constexpr qint64 max_line_bytes = 2048;

/// While it lives, the terminal shows nothing that is typed, and an interruption ends
/// wait_for_line() instead of the program, so that the echo comes back.
class silent_terminal_t {
 public:
    silent_terminal_t() {
        sigset_t interruption;
        sigemptyset(&interruption);
        sigaddset(&interruption, SIGINT);
        pthread_sigmask(SIG_BLOCK, &interruption, &former_mask);
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGINT, &action, &former_action);
        tcgetattr(STDIN_FILENO, &former_terminal);
        termios silent = former_terminal;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~silent_terminal_t() {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &former_terminal);
        sigaction(SIGINT, &former_action, nullptr);
        pthread_sigmask(SIG_SETMASK, &former_mask, nullptr);
    }
    Q_DISABLE_COPY_MOVE(silent_terminal_t)

    /// False: interrupted, be it during this call or at any time before it.
    bool wait_for_line() const {
        pollfd terminal = {STDIN_FILENO, POLLIN, 0};
        return ppoll(&terminal, 1, nullptr, &former_mask) > 0;
    }

 private:
    struct sigaction former_action {};
    sigset_t former_mask{};
    termios former_terminal{};
};

/// A terminal hands over one whole line; nothing when it was interrupted.
QByteArray terminal_line(const QString& _question) {
    const silent_terminal_t silent;
    write_text(stderr, _question);  // not before: what was typed until now is dropped
    std::array<char, max_line_bytes> buffer;
    const ssize_t count =
        silent.wait_for_line() ? ::read(STDIN_FILENO, buffer.data(), buffer.size()) : 0;
    write_text(stderr, QStringLiteral("\n"));
    return QByteArray(buffer.data(), std::max<ssize_t>(count, 0));
}

QByteArray piped_line() {
    QFile input;
    return input.open(stdin, QIODevice::ReadOnly) ? input.readLine(max_line_bytes) : QByteArray();
}

QByteArray without_line_end(QByteArray _line) {
    if (_line.endsWith('\n')) {
        _line.chop(_line.endsWith("\r\n") ? 2 : 1);
    }
    return _line;
}

base::result_of_t<QString> password_in(const QByteArray& _line, password_rule_t _rule) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString password = decoder(without_line_end(_line));
    if (decoder.hasError()) {
        return base::result_t::failed(QStringLiteral("The password must be UTF-8 text."));
    }
    const QString error = _rule(password);
    if (!error.isEmpty()) {
        return base::result_t::failed(QStringLiteral("The password %1.").arg(error));
    }
    return password;
}

}  // namespace

base::result_of_t<QString> read_password(password_rule_t _rule, const QString& _question) {
    return password_in(isatty(STDIN_FILENO) ? terminal_line(_question) : piped_line(), _rule);
}

base::result_of_t<QString> read_password_file(const QString& _path, password_rule_t _rule) {
    constexpr qint64 max_bytes = 1 << 20;
    const auto bytes = file_reader_t(_path, max_bytes).read();
    if (!bytes.is_ok()) {
        return bytes;
    }
    const qsizetype end = bytes.value.indexOf('\n');
    const auto password = password_in(end < 0 ? bytes.value : bytes.value.left(end + 1), _rule);
    if (!password.is_ok()) {
        return base::result_t::failed(_path + QStringLiteral(": ") + password.error);
    }
    return password;
}

}  // namespace torlan
