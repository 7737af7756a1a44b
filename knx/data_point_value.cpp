#include "knx/data_point_value.h"

#include "database/name_rules.h"
#include "knx/float_coding.h"
#include "knx/number_coding.h"
#include "knx/text_coding.h"
#include "knx/time_coding.h"

namespace knx {

namespace {

struct coder_t {
    coding_t coding;
    encoded_t (*encode)(const data_point_type_t& _type, const QString& _text);
    std::optional<QString> (*decode)(const data_point_type_t& _type, const QByteArray& _bytes);
};

const coder_t& coder_of(coding_t _coding) {
    // In the order of coding_t.
    static constexpr coder_t coders[] = {
        {coding_t::code, encode_code, decode_code},
        {coding_t::quantity, encode_quantity, decode_quantity},
        {coding_t::float16, encode_float16, decode_float16},
        {coding_t::float32, encode_float32, decode_float32},
        {coding_t::ascii_text, encode_text, decode_text},
        {coding_t::latin1_text, encode_text, decode_text},
        {coding_t::time_of_day, encode_time_of_day, decode_time_of_day},
        {coding_t::date, encode_date, decode_date},
        {coding_t::date_and_time, encode_date_and_time, decode_date_and_time},
        {coding_t::scene, encode_scene, decode_scene},
        {coding_t::scene_control, encode_scene, decode_scene},
    };
    const coder_t& coder = coders[static_cast<size_t>(_coding)];
    Q_ASSERT(coder.coding == _coding);
    return coder;
}

QString named(const data_point_type_t& _type) {
    return QStringLiteral("type %1 (%2)").arg(_type.id(), QString::fromUtf8(_type.name));
}

QString said(refusal_t _reason) {
    switch (_reason) {
        case refusal_t::no_number:
            return QStringLiteral("is no number");
        case refusal_t::no_whole_number:
            return QStringLiteral("is no whole number");
        case refusal_t::out_of_range:
            return QStringLiteral("is out of range");
        case refusal_t::wrong_form:
            break;
    }
    return QStringLiteral("is no value");
}

base::result_t no_value(const data_point_type_t& _type, const QByteArray& _bytes) {
    return base::result_t::failed(
        QStringLiteral("The bytes %1 are no value of %2.")
            .arg(database::shown(QString::fromLatin1(_bytes.toHex())), named(_type)));
}

}  // namespace

base::result_of_t<QByteArray> encode(const data_point_type_t& _type, const QString& _text) {
    const encoded_t encoded = coder_of(_type.coding).encode(_type, _text);
    if (encoded.refusal) {
        return base::result_t::failed(
            QStringLiteral("The value %1 %2 for %3: %4.")
                .arg(database::quoted(_text), said(*encoded.refusal), named(_type), _type.range()));
    }
    return encoded.bytes;
}

base::result_of_t<QString> decode(const data_point_type_t& _type, const QByteArray& _bytes) {
    if (_bytes.size() != _type.bytes()) {
        return base::result_t::failed(QStringLiteral("%1 has %2 bytes, not %3.")
                                          .arg(QLatin1Char('T') + named(_type).mid(1))
                                          .arg(_type.bytes())
                                          .arg(_bytes.size()));
    }
    const std::optional<QString> text = coder_of(_type.coding).decode(_type, _bytes);
    if (!text) {
        return no_value(_type, _bytes);
    }
    return *text;
}

}  // namespace knx
