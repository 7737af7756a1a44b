#include "api/api_session_t.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "base/backoff_t.h"
#include "base/json_text.h"
#include "base/random_hex.h"
#include "comunication/api_topics.h"
#include "database/name_rules.h"

namespace torlan {

using comunication::mosquitto_client_t;
using comunication::utility::qos_t;
using std::chrono::milliseconds;
namespace api_topics = comunication::api_topics;

namespace {

const QString uuid_key = QStringLiteral("uuid");

}  // namespace

api_session_t::api_session_t(api_account_t _account, QObject* _parent)
    : QObject(_parent),
      account(std::move(_account)),
      root(api_topics::user_root(api_topics::version_1, account.user)),
      client_word(QStringLiteral("torlanctl-") + base::random_hex(4)) {
    connect(&client, &mosquitto_client_t::opened, this, &api_session_t::changed);
    connect(&client, &mosquitto_client_t::closed, this,
            [this](const QString& _reason, bool _refused) {
                end = _reason;
                is_refused = _refused;
                Q_EMIT changed();
            });
    connect(&client, &mosquitto_client_t::subscribed, this, &api_session_t::note);
    connect(&client, &mosquitto_client_t::delivered, this, &api_session_t::note);
    connect(&client, &mosquitto_client_t::received, this, &api_session_t::take);
}

api_session_t::~api_session_t() {
    client.disconnect(this);
    if (client.is_open()) {
        client.close(false);
    }
}

QString api_session_t::place() const {
    return QStringLiteral("%1:%2").arg(account.host).arg(account.port);
}

QString api_session_t::seconds() const {
    return QString::number(double(account.wait.count()) / 1000);
}

QString api_session_t::request_topic(const QString& _what) const {
    return QStringLiteral("%1/%2/%3/%4").arg(root, client_word, api_topics::request_word, _what);
}

bool api_session_t::wait(milliseconds _limit, const std::function<bool()>& _is_enough) {
    if (given_up || _is_enough()) {
        return !given_up;
    }
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(this, &api_session_t::changed, &loop, [&]() {
        if (given_up || _is_enough()) {
            loop.quit();
        }
    });
    timer.start(_limit);
    loop.exec();
    return !given_up && _is_enough();
}

void api_session_t::give_up() {
    given_up = true;
    Q_EMIT changed();
}

void api_session_t::connect_once(milliseconds _limit) {
    end.clear();
    is_refused = false;
    client.open({.host = account.host,
                 .port = account.port,
                 .client_id = {},
                 .username = account.user,
                 .password = account.password,
                 .ca_file = account.ca_file});
    wait(_limit, [this]() { return client.is_open() || !end.isEmpty(); });
}

outcome_t api_session_t::open() {
    base::backoff_t pause(milliseconds(100), milliseconds(1000));
    const QDeadlineTimer limit(account.wait);
    const auto left = [&limit]() { return milliseconds(limit.remainingTime()); };
    for (connect_once(left()); !client.is_open() && !is_refused; connect_once(left())) {
        wait(std::min(pause.next(), left()), [] { return false; });
        if (given_up || limit.hasExpired()) {
            break;
        }
    }
    if (client.is_open()) {
        return subscribe(
            QStringLiteral("%1/%2/%3/#").arg(root, client_word, api_topics::status_word));
    }
    client.abandon();
    if (given_up) {
        return {};
    }
    return is_refused ? outcome_t(status_sign_in,
                                  QStringLiteral("The broker at %1 does not let %2 in: %3.")
                                      .arg(place(), account.user, end))
                      : outcome_t(status_silent,
                                  QStringLiteral("Nobody lets %1 in at %2 within %3 s: %4.")
                                      .arg(account.user, place(), seconds(),
                                           end.isEmpty() ? QStringLiteral("no answer") : end));
}

outcome_t api_session_t::await(const QString& _silence, const std::function<bool()>& _is_enough) {
    if (wait(account.wait, [&]() { return !client.is_open() || _is_enough(); }) &&
        client.is_open()) {
        return {};
    }
    if (given_up) {
        return {};
    }
    return {status_silent,
            client.is_open()
                ? QStringLiteral("%1 within %2 s.").arg(_silence, seconds())
                : QStringLiteral("The connection to %1 is gone: %2.").arg(place(), end)};
}

void api_session_t::note(int _id, bool _accepted) {
    if (_id == receipt.id) {
        receipt.accepted = _accepted;
        Q_EMIT changed();
    }
}

outcome_t api_session_t::subscribe(const QString& _filter) {
    receipt = {client.subscribe(_filter, qos_t::at_least_once, mosquitto_client_t::plain)};
    const outcome_t answered = await(QStringLiteral("The broker does not answer"),
                                     [this]() { return receipt.accepted.has_value(); });
    if (answered.status != status_done || given_up || *receipt.accepted) {
        return answered;
    }
    return {status_failed, QStringLiteral("The broker does not let %1 read %2.")
                               .arg(account.user, database::shown(_filter))};
}

outcome_t api_session_t::publish(const QString& _topic, const QByteArray& _payload) {
    receipt = {client.publish({_topic.toUtf8(), _payload, qos_t::exactly_once})};
    const outcome_t answered = await(QStringLiteral("The broker does not answer"),
                                     [this]() { return receipt.accepted.has_value(); });
    return answered.status == status_done && !given_up && !*receipt.accepted ? refused_at(_topic)
                                                                             : answered;
}

outcome_t api_session_t::refused_at(const QString& _topic) const {
    return {status_failed, QStringLiteral("The broker does not let %1 ask on %2.")
                               .arg(account.user, database::shown(_topic))};
}

outcome_t api_session_t::follow(const QString& _element) {
    return subscribe(api_topics::element_state(api_topics::version_1, account.user, _element));
}

outcome_t api_session_t::ask(const QString& _topic, const QJsonObject& _question,
                             QJsonObject* _answer) {
    const QString answers = api_topics::answer(_topic);
    if (!_topic.startsWith(root + QLatin1Char('/') + client_word + QLatin1Char('/'))) {
        const outcome_t listens = subscribe(answers);
        if (listens.status != status_done) {
            return listens;
        }
    }
    QJsonObject question = _question;
    if (question.value(uuid_key).toString().isEmpty()) {
        question.insert(uuid_key, base::random_hex());
    }
    open_question = question_t{answers, question.value(uuid_key).toString()};
    receipt = {
        client.publish({_topic.toUtf8(), base::json_to_text(question), qos_t::exactly_once})};
    const outcome_t answered = await(QStringLiteral("The API does not answer"), [this]() {
        return !open_question->answer.isEmpty() || !receipt.accepted.value_or(true);
    });
    *_answer = std::exchange(open_question, std::nullopt)->answer;
    if (_question.value(uuid_key).isUndefined()) {
        _answer->remove(uuid_key);
    }
    return answered.status == status_done && !receipt.accepted.value_or(true) ? refused_at(_topic)
                                                                              : answered;
}

void api_session_t::take(const QString& _topic, const QByteArray& _payload) {
    const QJsonObject packet = QJsonDocument::fromJson(_payload).object();
    const QString states =
        api_topics::element_state(api_topics::version_1, account.user, QString());
    if (_topic.startsWith(states)) {
        Q_EMIT state(_topic.mid(states.size()), packet.value(QLatin1String("data")).toObject());
    }
    if (open_question && _topic == open_question->answer_topic &&
        packet.value(uuid_key).toString() == open_question->uuid) {
        open_question->answer = packet;
    }
    Q_EMIT changed();
}

}  // namespace torlan
