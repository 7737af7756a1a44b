#pragma once

#include <QCommandLineParser>

#include "base/result_t.h"

namespace torlan {

/// Takes the numbers among the options of a program, one after the other; the first that is none
/// of its range makes a sentence, and nothing is taken after it.
class option_numbers_t {
 public:
    /// @param _parser has parsed a command line; it has to live as long
    explicit option_numbers_t(const QCommandLineParser& _parser) : parser(_parser) {}

    /// Leaves the number as it is when it was not given and has no default.
    /// @param _lowest,_highest from 0 to 65535
    template <class number_t>
    void take(const char* _option, int _lowest, int _highest, number_t* _number) {
        const QString name = QLatin1String(_option);
        const QString text = parser.value(name);
        if (!result.is_ok() || (!parser.isSet(name) && text.isEmpty())) {
            return;
        }
        bool is_number = false;
        const int number = text.toInt(&is_number);
        if (is_number && number >= _lowest && number <= _highest) {
            *_number = static_cast<quint16>(number);
            return;
        }
        result = base::result_t::failed(
            QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\".")
                .arg(name, QString::number(_lowest), QString::number(_highest), text));
    }

    base::result_t result;

 private:
    const QCommandLineParser& parser;
};

}  // namespace torlan
