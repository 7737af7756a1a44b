#include "bench/report/document.h"

#include <QJsonArray>
#include <QRegularExpression>

#include "bench/report/markdown.h"
#include "bench/report/other_tables.h"
#include "bench/report/request_table.h"
#include "bench/report/target_table.h"

namespace bench {

namespace {

struct table_t {
    QString word;
    QString section;
    QString (*make)(const QJsonArray& _rows);
};

const QList<table_t> tables{{"requests", "requests", request_table},
                            {"request_costs", "requests", request_cost_table},
                            {"pushes", "pushes", push_table},
                            {"storms", "storms", storm_table},
                            {"starts", "starts", start_table},
                            {"memory", "starts", memory_table},
                            {"changes", "changes", change_table},
                            {"micro", "micro", micro_table},
                            {"peer", "peer", peer_table}};

QString machine_text(const QJsonObject& _results) {
    const QJsonObject machine = _results["machine"].toObject();
    QList<QStringList> rows{
        {"measured", _results["measured"].toString()},
        {"commit", _results["commit"].toString()},
        {"rounds", QString::number(_results["rounds"].toInt())},
        {"milliseconds of a round", QString::number(_results["milliseconds"].toInt())}};
    for (auto it = machine.begin(); it != machine.end(); ++it) {
        rows.append({QString(it.key()).replace('_', ' '), it.value().toVariant().toString()});
    }
    rows.append({"note", _results["note"].toString()});
    return markdown_table({"what", "value"}, rows);
}

}  // namespace

QMap<QString, QString> tables_of(const QJsonObject& _results) {
    QMap<QString, QString> made{{"machine", machine_text(_results)},
                                {"targets", target_table(_results)}};
    for (const table_t& table : tables) {
        const QJsonArray rows = _results[table.section].toArray();
        made.insert(table.word, rows.isEmpty() ? QStringLiteral("Not measured in this run.\n")
                                               : table.make(rows));
    }
    return made;
}

QString all_tables(const QJsonObject& _results) {
    const QMap<QString, QString> made = tables_of(_results);
    QString text;
    for (auto it = made.begin(); it != made.end(); ++it) {
        text += "## " + it.key() + "\n\n" + it.value() + '\n';
    }
    return text;
}

base::result_of_t<QString> fill_in(const QString& _template,
                                   const QMap<QString, QString>& _tables) {
    static const QRegularExpression word(QStringLiteral("^@(\\w+)@\\n"),
                                         QRegularExpression::MultilineOption);
    QString text;
    qsizetype copied = 0;
    for (auto found = word.globalMatch(_template); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        if (!_tables.contains(match.captured(1))) {
            return base::result_t::failed(
                QStringLiteral("The template names \"%1\", which nothing stands for.")
                    .arg(match.captured(1)));
        }
        text += _template.mid(copied, match.capturedStart() - copied);
        text += _tables[match.captured(1)];
        copied = match.capturedEnd();
    }
    return text + _template.mid(copied);
}

}  // namespace bench
