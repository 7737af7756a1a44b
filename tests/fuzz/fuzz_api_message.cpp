// One message: a line with its topic, and behind it the payload. What the endpoint hands to the
// drivers of it, the API answers; nobody gets what is not his.
#include <QSet>

#include "endpoint/incoming_t.h"
#include "endpoint/json_payload.h"
#include "fuzz/fuzz_home_t.h"
#include "fuzz/fuzz_input.h"

using comunication::incoming_t;

namespace {

/// What the small home's grants say, not asked of the product.
QSet<QString> readable(const QString& _user) {
    return _user == "alice" ? QSet<QString>{"e-lamp", "e-night", "e-therm"}
           : _user == "bob" ? QSet<QString>{"e-lamp"}
                            : QSet<QString>{};
}

QSet<QString> writable_items(const QString& _user) {
    return _user == "alice" ? QSet<QString>{"i-lamp", "i-dim"}
           : _user == "bob" ? QSet<QString>{"i-set", "i-temp", "i-win"}
                            : QSet<QString>{};
}

/// Elements of a home stand in "data" by their id, or alone with a name of the home's.
bool shows_only(const QJsonObject& _data, const QSet<QString>& _elements) {
    static const QMap<QString, QString> names{
        {"e-lamp", "Kitchen lamp"}, {"e-night", "Good night"}, {"e-therm", "Living room"}};
    for (auto each = names.begin(); each != names.end(); ++each) {
        const bool shown = _data.value(each.key()).toObject().contains("name") ||
                           _data.value("name").toString() == each.value();
        if (shown && !_elements.contains(each.key())) {
            return false;
        }
    }
    return true;
}

void judge_answer(const incoming_t& _message, const QString& _topic, const QString& _uuid,
                  const fuzz_home_t::published_t& _answer) {
    const QString user = _message.levels.user;
    FUZZ_EXPECT(!_answer.retain);
    FUZZ_EXPECT(
        _answer.topic ==
        QString(_topic).replace(QLatin1String("request"), QLatin1String("status")).trimmed());
    FUZZ_EXPECT(_answer.payload.value("uuid").toString() == _uuid);
    FUZZ_EXPECT(_answer.payload.contains("error") != _answer.payload.contains("data"));
    FUZZ_EXPECT(shows_only(_answer.payload.value("data").toObject(), readable(user)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const QByteArray input(reinterpret_cast<const char*>(_data), qsizetype(_size));
    const qsizetype end = input.indexOf('\n');
    const QString topic = QString::fromUtf8(input.left(end));
    const QByteArray bytes = end < 0 ? QByteArray() : input.mid(end + 1);
    fuzz_home_t& home = fuzz_home_t::get();
    for (const bool retain : {false, true}) {
        incoming_t message = incoming_t::judge(topic, bytes, retain, true);
        if (message.action == incoming_t::action_t::take) {
            const auto payload = comunication::json_payload::decode(bytes);
            if (!payload) {
                continue;  // answered by the endpoint
            }
            message.payload = *payload;
        } else if (message.action != incoming_t::action_t::pass_on) {
            continue;
        }
        const auto answers = home.say(message.levels.version, message.levels.user,
                                      message.levels.type, topic, message.payload, retain);
        FUZZ_EXPECT(answers.size() <= (message.levels.is_request() ? 1 : 0));
        for (const auto& answer : answers) {
            judge_answer(message, topic, message.payload.value("uuid").toString(), answer);
        }
        for (const auto& [item, value] : home.database.item_requests) {
            FUZZ_EXPECT(writable_items(message.levels.user).contains(item));
        }
        FUZZ_EXPECT(home.database.scenary_requests.isEmpty() || message.levels.user == "alice");
    }
    return 0;
}
