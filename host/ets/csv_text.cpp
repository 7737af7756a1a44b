#include "ets/csv_text.h"

namespace ets {

namespace {

/// Goes over a text once.
class csv_reader_t {
 public:
    csv_reader_t(const QString& _text, QChar _separator) : text(_text), separator(_separator) {}

    base::result_of_t<QList<csv_row_t>> read() {
        while (at < text.size()) {
            csv_row_t row{line, {}};
            while (cell(&row.cells)) {
            }
            if (is_open) {
                return base::result_t::failed(
                    QStringLiteral("line %1: a quotation mark is never closed").arg(row.line));
            }
            if (row.cells.size() > 1 || !row.cells.constFirst().isEmpty()) {
                rows.append(row);
            }
        }
        return rows;
    }

 private:
    /// Reads one cell with what ends it; whether there is another one in the row.
    bool cell(QStringList* _cells) {
        QString value;
        if (at < text.size() && text[at] == u'"') {
            ++at;
            quoted(&value);
        }
        const qsizetype begin = at;
        while (at < text.size() && text[at] != separator && text[at] != u'\n' &&
               text[at] != u'\r') {
            ++at;
        }
        _cells->append(value.append(QStringView(text).mid(begin, at - begin)));
        if (at < text.size() && text[at] == separator) {
            ++at;
            return true;
        }
        end_line();
        return false;
    }

    void quoted(QString* _value) {
        is_open = true;
        for (; at < text.size(); ++at) {
            if (text[at] == u'"') {
                const bool is_doubled = at + 1 < text.size() && text[at + 1] == u'"';
                if (!is_doubled) {
                    ++at;
                    is_open = false;
                    return;
                }
                ++at;
            }
            line += text[at] == u'\n' ? 1 : 0;
            _value->append(text[at]);
        }
    }

    void end_line() {
        if (at < text.size() && text[at] == u'\r') {
            ++at;
        }
        if (at < text.size() && text[at] == u'\n') {
            ++at;
        }
        ++line;
    }

    const QString& text;
    const QChar separator;
    qsizetype at = 0;
    int line = 1;
    bool is_open = false;
    QList<csv_row_t> rows;
};

}  // namespace

base::result_of_t<QList<csv_row_t>> read_csv(const QString& _text, QChar _separator) {
    return csv_reader_t(_text, _separator).read();
}

}  // namespace ets
