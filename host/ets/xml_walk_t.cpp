#include "ets/xml_walk_t.h"

#include <utility>

#include "ets/limits_t.h"

namespace ets {

using base::result_t;

xml_walk_t::xml_walk_t(QIODevice* _source, QString _name, progress_t _progress)
    : file(std::move(_name)),
      progress(std::move(_progress)),
      meter(_source, max_token_bytes),
      reader(&meter) {}

bool xml_walk_t::next() {
    constexpr qint64 step = 1 << 20;
    while (error.isEmpty() && !reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        meter.allow_again();
        if (progress && meter.count() - told >= step) {
            told = meter.count();
            progress(file, told);
        }
        now -= token == QXmlStreamReader::EndElement ? 1 : 0;
        now += token == QXmlStreamReader::StartElement ? 1 : 0;
        if (!is_allowed()) {
            return false;
        }
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement) {
            return true;
        }
    }
    return false;
}

bool xml_walk_t::is_allowed() {
    if (meter.is_refused()) {
        return fail(QStringLiteral("a text is longer than %1 MiB").arg(max_token_bytes >> 20));
    }
    if (reader.isDTD()) {
        return fail(QStringLiteral("it has a document type, and with that may have entities"));
    }
    return now <= max_depth || fail(QStringLiteral("elements are too deep inside each other"));
}

bool xml_walk_t::fail(const QString& _why) {
    error = _why;
    return false;
}

QString xml_walk_t::attribute(const char* _name) const {
    return reader.attributes().value(QLatin1String(_name)).toString();
}

result_t xml_walk_t::result() const {
    // Why the source could not be read is the source's to tell.
    QString why = meter.has_failed() ? QStringLiteral("it cannot be read") : error;
    if (why.isEmpty() && reader.hasError()) {
        why = reader.errorString();
        why.chop(why.endsWith(u'.') ? 1 : 0);
    }
    return why.isEmpty()
               ? result_t()
               : result_t::failed(QStringLiteral("%1: line %2: %3.")
                                      .arg(file, QString::number(reader.lineNumber()), why));
}

}  // namespace ets
