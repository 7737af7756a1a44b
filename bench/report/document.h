#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>

#include "base/result_t.h"

namespace bench {

/// What a template can name, by its word: tables and facts. A section that was not measured has a
/// sentence that says so.
QMap<QString, QString> tables_of(const QJsonObject& _results);

/// All of them with a heading each, for a terminal.
QString all_tables(const QJsonObject& _results);

/// @p _template with each "@word@" replaced; a word that nothing stands for is an error.
base::result_of_t<QString> fill_in(const QString& _template, const QMap<QString, QString>& _tables);

}  // namespace bench
