#include "installation/json_text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSet>
#include <QStack>
#include <algorithm>

#include "database/name_rules.h"

namespace database::installation {

using ::base::result_t;

namespace {

QString at(const QByteArray& _bytes, qsizetype _offset, const QString& _sentence) {
    const QByteArray before = _bytes.left(_offset);
    const qsizetype line_begin = before.lastIndexOf('\n') + 1;
    return QStringLiteral("line %1, column %2: %3")
        .arg(QString::number(before.count('\n') + 1),
             QString::number(QString::fromUtf8(before.mid(line_begin)).size() + 1), _sentence);
}

/// A key as written, with its escapes, as text.
QString decoded(const QByteArray& _key) {
    if (!_key.contains('\\')) {
        return QString::fromUtf8(_key);
    }
    return QJsonDocument::fromJson("[\"" + _key + "\"]").array().at(0).toString();
}

/// Walks over a text that is known to be valid JSON and looks at its keys only.
class key_walk_t {
 public:
    explicit key_walk_t(const QByteArray& _bytes) : bytes(_bytes) {}

    /// A sentence about the first key that stands twice, or nothing.
    QString duplicate() {
        for (position = 0; position < bytes.size(); ++position) {
            const qsizetype begin = position;
            if (bytes[position] == '"') {
                position = string_end(position);
                if (!note_key(begin)) {
                    return at(bytes, begin,
                              quoted(key) + QStringLiteral(" stands twice in one object"));
                }
                continue;
            }
            note_structure(bytes[position]);
        }
        return {};
    }

 private:
    struct level_t {
        bool object = false;
        QSet<QString> keys;
    };

    qsizetype string_end(qsizetype _begin) const {
        qsizetype end = _begin + 1;
        while (end < bytes.size() && bytes[end] != '"') {
            end += bytes[end] == '\\' ? 2 : 1;
        }
        return end;
    }

    bool note_key(qsizetype _begin) {
        if (!key_expected) {
            return true;
        }
        key_expected = false;
        key = decoded(bytes.mid(_begin + 1, position - _begin - 1));
        const qsizetype before = levels.top().keys.size();
        levels.top().keys.insert(key);
        return levels.top().keys.size() > before;
    }

    void note_structure(char _c) {
        if (_c == '{' || _c == '[') {
            levels.push({_c == '{', {}});
            key_expected = _c == '{';
        } else if (_c == '}' || _c == ']') {
            levels.pop();
            key_expected = false;
        } else if (_c == ',') {
            key_expected = levels.top().object;
        }
    }

    const QByteArray& bytes;
    QStack<level_t> levels;
    QString key;
    qsizetype position = 0;
    bool key_expected = false;
};

}  // namespace

::base::result_of_t<QJsonObject> parse_json(const QByteArray& _bytes) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(_bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        return result_t::failed(at(_bytes, error.offset, error.errorString()));
    }
    if (!document.isObject()) {
        return result_t::failed(QStringLiteral("must be a JSON object"));
    }
    const QString duplicate = key_walk_t(_bytes).duplicate();
    if (!duplicate.isEmpty()) {
        return result_t::failed(duplicate);
    }
    return document.object();
}

}  // namespace database::installation
