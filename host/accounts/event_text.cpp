#include "accounts/event_text.h"

#include <QHash>
#include <QStringList>

#include "database/name_rules.h"

namespace accounts {

namespace {

/// Around the user's name.
QString sentence(const QString& _kind) {
    static const QHash<QString, QString> sentences{
        {QStringLiteral("signed-in"), QStringLiteral("%1 has signed in")},
        {QStringLiteral("departed"), QStringLiteral("%1 has left")},
        {QStringLiteral("failed"), QStringLiteral("Somebody failed to sign in as %1")},
        {QStringLiteral("unchecked"),
         QStringLiteral("Too many passwords wait, one for %1 was not compared")},
        {QStringLiteral("refused"), QStringLiteral("%1 was not let in")},
        {QStringLiteral("write-refused"), QStringLiteral("%1 may not write")},
        {QStringLiteral("subscribe-refused"), QStringLiteral("%1 may not read")},
        {QStringLiteral("flooding"),
         QStringLiteral("%1 publishes too much, what is above is dropped")},
    };
    return sentences.value(_kind, QStringLiteral("Something happened at the door to %1"));
}

}  // namespace

bool is_refusal(const broker_event_t& _event) {
    return _event.kind != QLatin1String("signed-in") && _event.kind != QLatin1String("departed");
}

QString event_text(const broker_event_t& _event) {
    QStringList notes{QStringLiteral("client ") + database::quoted(_event.client),
                      QStringLiteral("from ") + database::quoted(_event.address)};
    if (!_event.detail.isEmpty()) {
        notes.append(database::quoted(_event.detail));
    }
    if (_event.count > 1) {
        notes.append(QStringLiteral("%1 times").arg(_event.count));
    }
    return QStringLiteral("MQTT: %1 (%2)")
        .arg(sentence(_event.kind).arg(database::quoted(_event.user)),
             notes.join(QStringLiteral(", ")));
}

}  // namespace accounts
