#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include "base/result_t.h"

/// What people write to an element's functions. Pure.
namespace torlan {

/// "FUNCTION=VALUE", as it was typed.
struct assignment_t {
    QString function;
    QString value;

    bool operator==(const assignment_t&) const = default;
};

/// Takes them apart; a function comes once.
base::result_of_t<QList<assignment_t>> assignments_of(const QStringList& _typed);

/// What is sent for a typed value: digits as a text, which loses none of them, other numbers, true
/// and false as what they are. Any other text as a text, for the API to refuse.
QJsonValue written_value(const QString& _typed);

/// A write's "functions".
QJsonObject written_functions(const QList<assignment_t>& _assignments);

/// Whether @p _value is what comes back of a typed value that was taken: numbers have six digits
/// by then, and what is on or off is 1, 0, true or false.
bool comes_of(const QString& _value, const QString& _typed);

}  // namespace torlan
