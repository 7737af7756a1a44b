#include "first_request_t.h"

#include <QRegularExpression>

#include "database/database_t.h"
#include "live/write_gate_t.h"

namespace torlan {

namespace {

using database::live::write_gate_t;
using database::persistent::objects::ps_object_element_t;
using database::persistent::objects::ps_object_user_t;

constexpr int read_and_write = 3;

/// As a shell takes it for one word.
QString shell_word(QString _text) {
    static const QRegularExpression plain(QStringLiteral("\\A[A-Za-z0-9_./=:@%+-]+\\z"));
    return plain.match(_text).hasMatch()
               ? _text
               : QLatin1Char('\'') + _text.replace(QLatin1Char('\''), QStringLiteral("'\\''")) +
                     QLatin1Char('\'');
}

/// The first connected function that is 0 or 1 and may be the other; another kind of value would
/// have to be known.
bool take_switch(const database::database_t& _database, const write_gate_t& _gate,
                 const ps_object_element_t& _element, first_request_t* _request) {
    const auto items = _database.getRealtime()->getItems()->getObjects();
    const QMap<QString, QVariant> functions = _element.getFunction_map();
    for (auto function = functions.cbegin(); function != functions.cend(); ++function) {
        const QString id = function.value().toString();
        const auto* item = items.value(id, nullptr);
        const QString value = item != nullptr ? item->getValue() : QString();
        const QString other =
            value == QLatin1String("0") ? QStringLiteral("1") : QStringLiteral("0");
        if ((value == QLatin1String("0") || value == QLatin1String("1")) &&
            _gate.refusal(id, other).isEmpty()) {
            _request->function = function.key();
            _request->value = other;
            return true;
        }
    }
    return false;
}

}  // namespace

std::optional<first_request_t> first_request_t::find(const database::database_t& _database,
                                                     const write_gate_t& _gate) {
    const auto* data = _database.getPersistent()->getData();
    const auto users = data->getUsers()->getObjects();
    const auto elements = data->getElements()->getObjects();
    for (auto user = users.cbegin(); user != users.cend(); ++user) {
        for (auto element = elements.cbegin(); element != elements.cend(); ++element) {
            first_request_t request{user.key(), (*user)->getUsername(), element.key(), {}, {}};
            if (data->check_permission_element_by_userid(
                    element.key(), user.key(), ps_object_user_t::PermissionFlag::element) ==
                    read_and_write &&
                take_switch(_database, _gate, **element, &request)) {
                return request;
            }
        }
    }
    return {};
}

QString first_request_t::text(const QStringList& _torlanctl, const QString& _password) const {
    QStringList call;
    for (const QString& word : _torlanctl) {
        call.append(shell_word(word));
    }
    const QString torlanctl = call.join(QLatin1Char(' '));
    const QString known =
        _password.isEmpty()
            ? QStringLiteral("with the password of %1").arg(username)
            : QStringLiteral("the password of %1 is %2").arg(username, shell_word(_password));
    return QStringLiteral(
               "torlan: try it in another terminal, %1:\n"
               "  %2 watch --user %3\n"
               "  %2 put %4 %5 --confirm --user %3\n")
        .arg(known, torlanctl, shell_word(username), shell_word(element),
             shell_word(function + QLatin1Char('=') + value));
}

}  // namespace torlan
