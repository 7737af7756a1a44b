#include "live_question.h"

#include <QDeadlineTimer>

namespace torlan {

using base::result_of_t;
using base::result_t;
using control::control_client_t;

result_t as_sentence(const result_t& _clause) {
    return result_t::failed(_clause.error.left(1).toUpper() + _clause.error.mid(1));
}

result_of_t<QJsonObject> first_answer(control_client_t* _client, const QString& _data,
                                      const QJsonObject& _question,
                                      std::chrono::milliseconds _patience) {
    const auto serves = _client->has_server();
    if (!serves.is_ok()) {
        return as_sentence(serves);
    }
    if (!serves.value) {
        return result_t::failed(QStringLiteral("No server runs on %1.").arg(_data));
    }
    const QDeadlineTimer limit(_patience);
    const result_t asked = _client->ask(_question, limit);
    auto answer = asked.is_ok() ? _client->next(limit) : result_of_t<QJsonObject>(asked);
    if (!answer.is_ok()) {
        return as_sentence(answer);
    }
    answer.value.remove(QStringLiteral("version"));
    return answer;
}

}  // namespace torlan
