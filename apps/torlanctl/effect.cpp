#include "effect.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QThread>
#include <algorithm>
#include <chrono>

#include "control/control_client_t.h"
#include "control/protocol.h"
#include "store/change_log_t.h"
#include "store/change_mark_t.h"

namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using control::control_client_t;
using database::store::change_mark_t;
using database::store::connection_t;

constexpr std::chrono::milliseconds patience{5'000};
/// Of one question: a server that is busy for seconds still answers within the patience.
constexpr qint64 longest_question_ms = 2'000;
/// The server gives up earlier, so that its reason still arrives.
constexpr qint64 for_the_answer_ms = 300;
constexpr unsigned long try_again_ms = 50;

/// The newest change there is: what was committed before is not newer.
result_of_t<change_mark_t> newest_change(const QString& _data) {
    connection_t connection;
    const result_t opened =
        connection.open(QDir(_data).filePath(QStringLiteral("installation.db")),
                        connection_t::access_t::read_only, int(patience.count()));
    if (!opened.is_ok()) {
        return opened;
    }
    const auto newest = database::store::change_log_t(connection).newest_ever();
    if (!newest.is_ok()) {
        return newest;
    }
    const auto file = connection.file();
    if (!file) {
        return result_t::failed(QStringLiteral("the database is being replaced."));
    }
    return change_mark_t{*file, newest.value};
}

/// One attempt to hear that it is so.
result_t ask(control_client_t* _client, const QString& _data, const QDeadlineTimer& _limit) {
    const auto mark = newest_change(_data);
    if (!mark.is_ok()) {
        return mark;
    }
    const result_t asked = _client->ask(
        {{QStringLiteral("ask"), control::ask_effective()},
         {QStringLiteral("mark"), mark.value.to_json()},
         {QStringLiteral("within_ms"),
          std::clamp<qint64>(_limit.remainingTime() - for_the_answer_ms, 0, longest_question_ms)}},
        _limit);
    const auto answer = asked.is_ok() ? _client->next(_limit) : result_of_t<QJsonObject>(asked);
    if (!answer.is_ok()) {
        return answer;
    }
    const QJsonObject& told = answer.value;
    return told.value(QLatin1String("effective")).toBool()
               ? result_t()
               : result_t::failed(told.value(QLatin1String("reason")).toString());
}

}  // namespace

result_t await_effect(const QString& _data) {
    const QDeadlineTimer limit(patience);
    control_client_t client(_data);
    for (;;) {
        const auto serves = client.has_server();
        if (serves.is_ok() && !serves.value) {
            return {};
        }
        const result_t effective = serves.is_ok() ? ask(&client, _data, limit) : result_t(serves);
        if (effective.is_ok()) {
            return {};
        }
        if (limit.remainingTime() <= for_the_answer_ms) {
            return result_t::failed(QStringLiteral("It is stored, but not effective yet: ") +
                                    effective.error);
        }
        QThread::msleep(try_again_ms);
    }
}

}  // namespace torlan
