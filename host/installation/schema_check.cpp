#include "installation/schema_check.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <set>
#include <valijson/adapters/qtjson_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include "database/name_rules.h"

namespace database::installation {

namespace {

using place_t = std::vector<std::string>;
using valijson::adapters::QtJsonAdapter;

QJsonObject read_schema() {
    QFile file(QStringLiteral(":/installation/installation.schema.json"));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

/// Without the rules that installation_rules.cpp checks with better sentences. Patterns must go
/// in any case: std::regex recurses once per character, and a text of some 100 kB ends the process.
QJsonValue shape_only(const QJsonValue& _schema) {
    static const QStringList left_to_rules{
        QStringLiteral("pattern"), QStringLiteral("propertyNames"), QStringLiteral("not"),
        QStringLiteral("allOf"),   QStringLiteral("maxLength"),     QStringLiteral("minLength")};
    if (!_schema.isObject()) {
        return _schema;
    }
    QJsonObject kept;
    const QJsonObject schema = _schema.toObject();
    for (auto it = schema.begin(); it != schema.end(); ++it) {
        if (!left_to_rules.contains(it.key())) {
            kept.insert(it.key(), shape_only(it.value()));
        }
    }
    return kept;
}

const QJsonObject& schema_document() {
    static const QJsonObject schema = shape_only(read_schema()).toObject();
    return schema;
}

const valijson::Schema& compiled_schema() {
    static const auto schema = [] {
        auto compiled = std::make_unique<valijson::Schema>();
        valijson::SchemaParser().populateSchema(QtJsonAdapter(schema_document()), *compiled);
        return compiled;
    }();
    return *schema;
}

QJsonObject resolved(const QJsonObject& _schema) {
    const QString definition =
        _schema[QLatin1String("$ref")].toString().section(QLatin1Char('/'), -1);
    return definition.isEmpty()
               ? _schema
               : schema_document()[QLatin1String("definitions")][definition].toObject();
}

/// The part of the schema that speaks about a place of the document.
QJsonObject schema_at(const QStringList& _place) {
    QJsonObject schema = schema_document();
    for (const QString& key : _place) {
        const QJsonValue property = schema[QLatin1String("properties")][key];
        schema = resolved(
            (property.isObject() ? property : schema[QLatin1String("additionalProperties")])
                .toObject());
    }
    return schema;
}

QString wrong_key(const QJsonObject& _value, const QJsonObject& _schema) {
    for (const QJsonValue& key : _schema[QLatin1String("required")].toArray()) {
        if (!_value.contains(key.toString())) {
            return quoted(key.toString()) + QStringLiteral(" is missing");
        }
    }
    for (const QString& key : _value.keys()) {
        if (!_schema[QLatin1String("properties")].toObject().contains(key)) {
            return QStringLiteral("there is no such key as ") + quoted(key);
        }
    }
    return {};
}

QString sentence(const QJsonObject& _document, const QStringList& _place) {
    QJsonValue value = _document;
    for (const QString& key : _place) {
        value = value[key];
    }
    const QJsonObject schema = schema_at(_place);
    const QString keys = value.isObject() ? wrong_key(value.toObject(), schema) : QString();
    return keys.isEmpty() ? schema[QLatin1String("errorMessage")].toString() : keys;
}

/// valijson's context is "<root>", "[elements]", "[e-lamp]".
QStringList readable(const place_t& _context) {
    QStringList place;
    for (size_t i = 1; i < _context.size(); ++i) {
        place.append(QString::fromStdString(_context[i].substr(1, _context[i].size() - 2)));
    }
    return place;
}

bool inside(const place_t& _place, const place_t& _outer) {
    return _place.size() > _outer.size() &&
           std::equal(_outer.begin(), _outer.end(), _place.begin());
}

/// valijson reports a failure again at every level above it; only the innermost places count.
problems_t innermost(const std::set<place_t>& _failures, const QJsonObject& _document) {
    problems_t problems;
    for (auto it = _failures.begin(); it != _failures.end(); ++it) {
        const auto next = std::next(it);
        if (next == _failures.end() || !inside(*next, *it)) {
            const QStringList place = readable(*it);
            problems.add(place, sentence(_document, place));
        }
    }
    return problems;
}

}  // namespace

problems_t check_shape(const QJsonObject& _document) {
    valijson::Validator validator(valijson::Validator::kStrongTypes);
    valijson::ValidationResults results;
    validator.validate(compiled_schema(), QtJsonAdapter(_document), &results);
    std::set<place_t> failures;
    for (const auto& failure : results) {
        failures.insert(failure.context);
    }
    return innermost(failures, _document);
}

}  // namespace database::installation
