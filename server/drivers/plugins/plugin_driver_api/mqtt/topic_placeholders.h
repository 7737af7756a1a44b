#pragma once

#include <QHash>
#include <QString>

namespace interfaces::topics {

/// Replaces placeholder tokens ("@sender") by their values in one pass: a value that holds a
/// token is not replaced again; a token without a value is left alone. Case-sensitive.
QString replace_placeholders(const QString& _template, const QHash<QString, QString>& _values);

}  // namespace interfaces::topics
