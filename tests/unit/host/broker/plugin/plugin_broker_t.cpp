#include "unit/host/broker/plugin/plugin_broker_t.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QPasswordDigestor>
#include <QStandardPaths>

#include "kit/free_port.h"

using namespace kit;

namespace {

constexpr const char* control_topic = "$CONTROL/torlan/v1";
constexpr const char* answer_topic = "$CONTROL/torlan/v1/answer";
constexpr const char* report_topic = "$CONTROL/torlan/v1/report";

}  // namespace

QByteArray plugin_broker_t::library() {
    return PLUGIN_PATH;
}

QByteArray plugin_broker_t::hash(const QByteArray& _password, int _iterations) {
    const QByteArray salt = "0123456789ab";
    return "$7$" + QByteArray::number(_iterations) + "$" + salt.toBase64() + "$" +
           QPasswordDigestor::deriveKeyPbkdf2(QCryptographicHash::Sha512, _password, salt,
                                              _iterations, 64)
               .toBase64();
}

QByteArray plugin_broker_t::user(const QByteArray& _name, const QByteArray& _password,
                                 int _iterations) {
    return "user " + _name + " " +
           hash(_password.isNull() ? _name + "-pw" : _password, _iterations);
}

plugin_broker_t::plugin_broker_t(const QByteArray& _options)
    : port(kit::free_port()), websocket_port(kit::free_port()), path(folder.filePath("socket")) {
    QFile configuration(folder.filePath("mosquitto.conf"));
    configuration.open(QIODevice::WriteOnly);
    configuration.write(
        "listener 0 " + path.toLocal8Bit() + "\nlistener " + QByteArray::number(port) +
        " 127.0.0.1\nlistener " + QByteArray::number(websocket_port) +
        " 127.0.0.1\nprotocol websockets\nsocket_domain ipv4\n"
        "allow_anonymous false\ncheck_retain_source false\n"
        "max_queued_messages 1000000000\nsys_interval 0\nlog_type error\nlog_type warning\n"
        "log_dest stderr\nset_tcp_nodelay true\nplugin " +
        library() + "\nplugin_opt_host_account @torlan\nplugin_opt_host_address " +
        path.toLocal8Bit() + "\nplugin_opt_host_hash " + hash(host_password, 1) + "\n" + _options +
        "\n");
    // Without it root's broker becomes another account, which cannot enter the folder.
    if (::geteuid() == 0) {
        configuration.write("user root\n");
    }
    configuration.close();
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStandardPaths::findExecutable(QStringLiteral("mosquitto"),
                                                 {"/usr/sbin", "/usr/local/sbin", "/sbin"}),
                  {QStringLiteral("-c"), configuration.fileName()});
    process.waitForStarted();
}

plugin_broker_t::~plugin_broker_t() {
    host.reset();
    process.terminate();
    if (!process.waitForFinished(10'000)) {
        process.kill();
        process.waitForFinished();
    }
}

bool plugin_broker_t::connect_host(const QByteArray& _id) {
    const QDeadlineTimer deadline(10'000);
    host = std::make_unique<raw_mqtt_t>(raw_mqtt_t::way_t::local, path);
    while (!host->is_open() && is_running() && !deadline.hasExpired()) {
        process.waitForReadyRead(5);
        host = std::make_unique<raw_mqtt_t>(raw_mqtt_t::way_t::local, path);
    }
    looked_at.clear();
    return host->connect({.name = "@torlan", .password = host_password, .id = _id}) == 0;
}

QByteArray plugin_broker_t::tell(const QByteArray& _kind, const QByteArrayList& _rows) {
    QByteArray text = _kind + " " + QByteArray::number(++number) + "\n";
    for (const QByteArray& row : _rows) {
        text += row + "\n";
    }
    host->publish(control_topic, text + "end\n");
    return await_message(answer_topic).chopped(1);
}

QByteArray plugin_broker_t::tell_both() {
    return tell("all", {"connection home/1/connection", user("alice"), user("bob")});
}

QByteArray plugin_broker_t::await_message(const QByteArray& _topic) {
    const QDeadlineTimer deadline(10'000);
    while (!deadline.hasExpired()) {
        const QList<raw_message_t> all = host->received();
        for (qsizetype& place = looked_at[_topic]; place < all.size();) {
            if (all[place++].topic == _topic) {
                return all[place - 1].payload;
            }
        }
    }
    return "nothing came\n";
}

QByteArrayList plugin_broker_t::reports_until(const QByteArray& _text) {
    QByteArrayList rows;
    while (true) {
        const QByteArray report = await_message(report_topic);
        QByteArrayList lines = report.chopped(1).split('\n');
        const QByteArray head = lines.takeFirst();
        rows += lines;
        if (!head.startsWith("report ")) {
            return rows + QByteArrayList{head};
        }
        host->publish(control_topic, "seen " + head.mid(7) + "\nend\n");
        if (report.contains(_text)) {
            return rows;
        }
    }
}

void plugin_broker_t::delete_session(const QByteArray& _id) {
    raw_mqtt_t deleter(raw_mqtt_t::way_t::local, path);
    deleter.connect({.name = "@torlan", .password = host_password, .id = _id});
    deleter.disconnect();
}

std::unique_ptr<raw_mqtt_t> plugin_broker_t::client(raw_mqtt_t::way_t _way) const {
    using way_t = raw_mqtt_t::way_t;
    return std::make_unique<raw_mqtt_t>(
        _way,
        _way == way_t::local ? path : QString::number(_way == way_t::tcp ? port : websocket_port));
}

std::unique_ptr<raw_mqtt_t> plugin_broker_t::enter(raw_connect_t _as, int* _code,
                                                   raw_mqtt_t::way_t _way) const {
    if (_as.password.isNull()) {
        _as.password = _as.name + "-pw";
    }
    auto made = client(_way);
    const int code = made->connect(_as);
    if (_code != nullptr) {
        *_code = code;
    }
    return made;
}
