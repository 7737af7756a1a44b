#include "program/say.h"

#include <QCoreApplication>
#include <algorithm>

#include "program/standard_streams.h"

namespace torlan {

namespace {

QString& speaker() {
    static QString name;
    return name;
}

}  // namespace

void speak_as(const QString& _speaker) {
    speaker() = _speaker;
}

void say(std::FILE* _stream, const QString& _sentence) {
    const QString name = speaker().isEmpty() ? QCoreApplication::applicationName() : speaker();
    QString line = name + QStringLiteral(": ") + _sentence;
    const auto is_control = [](QChar _char) { return _char.category() == QChar::Other_Control; };
    std::replace_if(line.begin(), line.end(), is_control, QLatin1Char(' '));
    write_text(_stream, line + QLatin1Char('\n'));
}

}  // namespace torlan
