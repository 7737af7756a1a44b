#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace database::installation {

/// A JSON text as an object, or why it is none.
struct json_text_t {
    QJsonObject object;
    QString error;  ///< "line 3, column 7: ..."; empty: object holds the document
};

/// Parses a JSON text whose root is an object. A key that stands twice in one object is an error:
/// Qt's parser would silently take the last. Columns count characters, from 1.
json_text_t parse_json(const QByteArray& _bytes);

}  // namespace database::installation
