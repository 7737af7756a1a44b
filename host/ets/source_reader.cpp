#include "ets/source_reader.h"

#include "ets/csv_export.h"
#include "ets/text_encoding.h"
#include "ets/xml_export.h"

namespace ets {

using base::result_of_t;
using base::result_t;

namespace {

result_of_t<project_t> read_any(const QByteArray& _bytes, const reading_t& _how) {
    constexpr qsizetype head_bytes = 4096;
    constexpr qint64 max_table_bytes = 64 << 20;
    if (_bytes.startsWith("PK")) {
        return read_project(_bytes, _how);
    }
    if (_bytes.isEmpty()) {
        return result_t::failed(QStringLiteral("It is empty."));
    }
    if (decoded_text(_bytes.left(head_bytes)).trimmed().startsWith(u'<')) {
        return read_xml_export(_bytes, _how.progress);
    }
    if (_bytes.size() > max_table_bytes) {
        return result_t::failed(
            QStringLiteral("It is no ETS project and too large for an export."));
    }
    return read_csv_export(_bytes);
}

}  // namespace

result_of_t<project_t> read_source(const QByteArray& _bytes, const QString& _name,
                                   const reading_t& _how) {
    result_of_t<project_t> read = read_any(_bytes, _how);
    if (!read.is_ok()) {
        return result_t::failed(_name + QStringLiteral(": ") + read.error);
    }
    if (read.value.groups.isEmpty()) {
        read.value.note(QStringLiteral("There is no group address in %1.").arg(_name));
    }
    return read;
}

}  // namespace ets
