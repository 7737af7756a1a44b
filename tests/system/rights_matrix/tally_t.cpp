#include "system/rights_matrix/tally_t.h"

#include "system/rights_matrix/expected.h"

namespace matrix {

namespace {

QString name(const tally_t::cell_t& _cell) {
    const QString element = _cell.element.isEmpty() ? QStringLiteral("-") : _cell.element;
    return QStringLiteral("%1 | %2 | %3 | %4 | %5")
        .arg(QLatin1String(name_of(_cell.right)), element, QLatin1String(name_of(_cell.path)),
             _cell.door.name(), _cell.moment);
}

void list(const char* _what, const QStringList& _cells, QString* _text) {
    for (const QString& cell : _cells) {
        *_text += QStringLiteral("  %1: %2\n").arg(QLatin1String(_what), cell);
    }
}

}  // namespace

void tally_t::note(const cell_t& _cell, outcome_t _seen) {
    const QString cell = name(_cell);
    if (names.contains(cell)) {
        qFatal("%s was tried twice", qPrintable(cell));
    }
    names.insert(cell);
    const outcome_t wanted = expected(_cell.right, _cell.path, _cell.is_hidden, _cell.door.version);
    counts_t& counts = moments[_cell.moment];
    ++counts.tried;
    counts.allowed += wanted == outcome_t::allowed ? 1 : 0;
    if (_seen == wanted) {
        return;
    }
    const bool leaks_here = _seen == outcome_t::allowed;
    const bool shuts_out = wanted == outcome_t::allowed;
    ++(leaks_here ? counts.leaked : shuts_out ? counts.shut_out : counts.otherwise);
    (leaks_here  ? leaks
     : shuts_out ? outs
                 : others)
        .append(QStringLiteral("%1 (%2, not %3)")
                    .arg(cell, QLatin1String(name_of(_seen)), QLatin1String(name_of(wanted))));
}

QString tally_t::report() const {
    QString text;
    list("leaked", leaks, &text);
    list("shut out", outs, &text);
    list("told otherwise", others, &text);
    list("not tried", missed_cells, &text);
    text += QStringLiteral("%1 %2 %3 %4 %5 %6\n")
                .arg("moment", -44)
                .arg("tried", 7)
                .arg("granted", 8)
                .arg("leaked", 7)
                .arg("shut out", 9)
                .arg("otherwise", 10);
    counts_t sum;
    const auto line = [&text](const QString& moment, const counts_t& counts) {
        text += QStringLiteral("%1 %2 %3 %4 %5 %6\n")
                    .arg(moment, -44)
                    .arg(counts.tried, 7)
                    .arg(counts.allowed, 8)
                    .arg(counts.leaked, 7)
                    .arg(counts.shut_out, 9)
                    .arg(counts.otherwise, 10);
    };
    for (auto each = moments.begin(); each != moments.end(); ++each) {
        line(each.key(), *each);
        sum.tried += each->tried;
        sum.allowed += each->allowed;
        sum.leaked += each->leaked;
        sum.shut_out += each->shut_out;
        sum.otherwise += each->otherwise;
    }
    line(QStringLiteral("all"), sum);
    return text;
}

}  // namespace matrix
