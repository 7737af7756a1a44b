#include "contract/support/public_functions.h"

#include <QRegularExpression>
#include <QStack>

namespace support {

namespace {

/// A namespace or class that is being read; anything else with braces has no name.
struct scope_t {
    QString name;
    bool is_class;
    bool is_public;
};

QString without(QString _text, const char* _pattern) {
    return _text.remove(
        QRegularExpression(QLatin1String(_pattern), QRegularExpression::MultilineOption));
}

/// Only declarations: no comments, directives and macros.
QString bare(const QString& _header) {
    QString text = without(_header, "//.*$");
    text = without(text, "^#(.*\\\\\\n)*.*$");
    return without(text,
                   "\\b(Q_OBJECT|Q_\\w+\\(.*\\)|TORLAN_\\w+(\\([^()]*\\))?)\\s*$|"
                   "\\bTORLAN_\\w+(\\([^()]*\\))?");
}

/// The scope that a "{" behind @p _text opens.
scope_t opened(const QString& _text) {
    static const QRegularExpression scope(
        QStringLiteral(R"(\b(namespace|class|struct)\s+([\w:]+)[^();=]*$)"));
    const auto match = scope.match(_text);
    if (!match.hasMatch() || _text.contains(QLatin1String("template"))) {
        return {{}, false, false};
    }
    const QString kind = match.captured(1);
    return {match.captured(2), kind != QLatin1String("namespace"), kind == QLatin1String("struct")};
}

/// The name of the function that @p _text declares; empty when it declares none that counts.
QString function_name(const QString& _text) {
    static const QRegularExpression other(
        QStringLiteral(R"(\b(template|using|friend|static_assert)\b|=\s*(0|delete)\s*$)"));
    static const QRegularExpression name(QStringLiteral(R"((operator\s*[^(]+|~?\w+)\s*\()"));
    const auto match = name.match(_text);
    const bool is_variable = _text.left(_text.indexOf(u'(')).contains(QLatin1String(" = "));
    return match.hasMatch() && !is_variable && !other.match(_text).hasMatch()
               ? match.captured(1).trimmed()
               : QString();
}

class reader_t {
 public:
    QStringList read(const QString& _text) {
        for (const QChar sign : _text) {
            take(sign);
        }
        return found;
    }

 private:
    void take(QChar _sign) {
        static const QRegularExpression access(
            QStringLiteral(R"(\b(public|protected|private|Q_SIGNALS)(\s+Q_SLOTS)?\s*$)"));
        if (_sign == u'{') {
            open();
        } else if (_sign == u'}') {
            scopes.pop();
            declared.clear();
        } else if (_sign == u';') {
            declare();
        } else if (_sign == u':' && access.match(declared).hasMatch()) {
            const QString word = access.match(declared).captured(1);
            scopes.top().is_public =
                word == QLatin1String("public") || word == QLatin1String("Q_SIGNALS");
            declared.clear();
        } else {
            declared += _sign;
        }
    }

    void open() {
        const scope_t scope = opened(declared);
        if (scope.name.isEmpty()) {
            declare();
        }
        scopes.push(scope);
        declared.clear();
    }

    void declare() {
        const QString name = function_name(declared);
        declared.clear();
        if (name.isEmpty() || scopes.isEmpty() || !scopes.top().is_class) {
            return;
        }
        QStringList path;
        for (const scope_t& scope : std::as_const(scopes)) {
            if (scope.name.isEmpty() || (scope.is_class && !scope.is_public)) {
                return;
            }
            path.append(scope.name);
        }
        found.append((path + QStringList{name}).join(QStringLiteral("::")));
    }

    QStack<scope_t> scopes;
    QString declared;  ///< since the last declaration ended
    QStringList found;
};

}  // namespace

QStringList public_functions(const QString& _header) {
    return reader_t().read(bare(_header));
}

}  // namespace support
