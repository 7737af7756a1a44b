#include "system/support/browser_t.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QStandardPaths>

#include "kit/wait_until.h"

namespace support {

namespace {

constexpr int answer_ms = 30'000;
/// What the browser reads its orders from, and writes to; given by --remote-debugging-pipe.
constexpr int orders = 3;
constexpr int news = 4;

/// A pipe whose ends are far from those two numbers.
bool make_pipe(int* _read, int* _write) {
    int low[2];
    if (::pipe2(low, O_CLOEXEC) != 0) {
        return false;
    }
    *_read = ::fcntl(low[0], F_DUPFD_CLOEXEC, 20);
    *_write = ::fcntl(low[1], F_DUPFD_CLOEXEC, 20);
    ::close(low[0]);
    ::close(low[1]);
    return *_read >= 0 && *_write >= 0;
}

}  // namespace

browser_t::browser_t(QObject* _parent) : QObject(_parent) {}

browser_t::~browser_t() {
    notifier.reset();
    process.kill();
    process.waitForFinished();
    ::close(to_browser);
    ::close(from_browser);
}

bool browser_t::start() {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (program.isEmpty()) {
        last_error = "Debian's package chromium is missing; see packaging/packages-test";
        return false;
    }
    int read_orders = -1;
    int write_news = -1;
    if (!make_pipe(&read_orders, &to_browser) || !make_pipe(&from_browser, &write_news)) {
        last_error = "no pipes";
        return false;
    }
    process.setChildProcessModifier([read_orders, write_news]() {
        ::dup2(read_orders, orders);
        ::dup2(write_news, news);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
    process.setStandardErrorFile(profile.filePath("errors"));
    // Root has no sandbox, and what is shown is our own.
    process.start(
        program,
        {"--headless=new", "--remote-debugging-pipe", "--no-sandbox", "--disable-gpu",
         "--disable-dev-shm-usage", "--no-first-run", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--hide-scrollbars", "--mute-audio",
         "--force-color-profile=srgb", "--lang=en-US", "--js-flags=--expose-gc",
         "--enable-precise-memory-info", "--user-data-dir=" + profile.path(), "about:blank"});
    const bool started = process.waitForStarted();
    ::close(read_orders);
    ::close(write_news);
    notifier = std::make_unique<QSocketNotifier>(from_browser, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &browser_t::read);
    const QJsonObject version = call("Browser.getVersion");
    last_error = version["failed"].toString();
    return started && last_error.isEmpty();
}

QJsonObject browser_t::call(const QString& _method, const QJsonObject& _parameters,
                            const QString& _session) {
    const int id = ++last_id;
    QJsonObject message{{"id", id}, {"method", _method}, {"params", _parameters}};
    if (!_session.isEmpty()) {
        message.insert("sessionId", _session);
    }
    const QByteArray text = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\0';
    if (::write(to_browser, text.constData(), std::size_t(text.size())) != text.size()) {
        return {{"failed", "the browser takes no orders"}};
    }
    if (!kit::wait_until([&]() { return answers.contains(id); }, answer_ms)) {
        return {{"failed", "no answer to " + _method}};
    }
    const QJsonObject answer = answers.take(id);
    if (answer.contains("error")) {
        return {{"failed", _method + ": " + answer["error"].toObject()["message"].toString()}};
    }
    return answer["result"].toObject();
}

void browser_t::read() {
    char bytes[65536];
    const ssize_t count = ::read(from_browser, bytes, sizeof bytes);
    if (count <= 0) {
        notifier->setEnabled(false);  // it has ended
        return;
    }
    received.append(bytes, count);
    qsizetype end = 0;
    while ((end = received.indexOf('\0')) >= 0) {
        const QByteArray text = received.left(end);
        received.remove(0, end + 1);
        take(QJsonDocument::fromJson(text).object());
    }
}

void browser_t::take(const QJsonObject& _message) {
    if (_message.contains("id")) {
        answers.insert(_message["id"].toInt(), _message);
    } else {
        Q_EMIT event(_message["sessionId"].toString(), _message["method"].toString(),
                     _message["params"].toObject());
    }
}

}  // namespace support
