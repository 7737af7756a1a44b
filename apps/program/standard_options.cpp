#include "program/standard_options.h"

#include <QCommandLineParser>

#include "program/version.h"

namespace torlan {

// Qt's own --help comes with a --help-all that has nothing to say here.
void add_standard_options(QCommandLineParser* _parser) {
    _parser->addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this text.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version.")},
    });
}

QString standard_answer(const QCommandLineParser& _parser) {
    if (_parser.isSet(QStringLiteral("help"))) {
        return _parser.helpText();
    }
    return _parser.isSet(QStringLiteral("version")) ? version_text() : QString();
}

base::result_of_t<QString> read_options(QCommandLineParser* _parser,
                                        const QStringList& _arguments) {
    if (!_parser->parse(_arguments)) {
        return base::result_t::failed(_parser->errorText());
    }
    const QString shown = standard_answer(*_parser);
    const QStringList words = _parser->positionalArguments();
    if (shown.isEmpty() && !words.isEmpty()) {
        return base::result_t::failed(
            QStringLiteral("\"%1\" is not an option.").arg(words.constFirst()));
    }
    return shown;
}

}  // namespace torlan
