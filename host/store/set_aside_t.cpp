#include "store/set_aside_t.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "installation/place_text.h"

namespace database::store {

namespace {

/// JSON knows no bytes.
QJsonValue json(const QVariant& _value) {
    return _value.typeId() == QMetaType::QByteArray
               ? QJsonObject{{QStringLiteral("bytes"),
                              QString::fromLatin1(_value.toByteArray().toHex())}}
               : QJsonValue::fromVariant(_value);
}

QString content(const row_t& _row) {
    QJsonObject object;
    for (qsizetype i = 0; i < _row.columns.size(); ++i) {
        object.insert(_row.columns.at(i), json(_row.values.at(i)));
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString place_of(const row_t& _row) {
    QStringList place{_row.table};
    for (const QVariant& name : _row.values.mid(0, _row.names)) {
        place.append(name.toString());
    }
    return installation::place_text(place);
}

}  // namespace

::base::result_t set_aside_t::add(const row_t& _row, const QString& _reason) {
    if (sentences.size() < told) {
        sentences.append(QStringLiteral("Database %1: %2 is set aside: %3.")
                             .arg(connection.path(), place_of(_row), _reason));
    } else {
        ++untold;
    }
    return connection.run(
        QStringLiteral("INSERT INTO set_aside (tab, content, reason) VALUES (?, ?, ?)"),
        {_row.table, content(_row), _reason});
}

QStringList set_aside_t::notes() const {
    if (untold == 0) {
        return sentences;
    }
    return sentences +
           QStringList(QStringLiteral("Database %1: %2 more rows are set aside, all are "
                                      "in its table set_aside.")
                           .arg(connection.path(), QString::number(untold)));
}

}  // namespace database::store
