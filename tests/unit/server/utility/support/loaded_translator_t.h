#pragma once

#include <QTranslator>

/// A translator that the application takes: it claims to hold texts.
class loaded_translator_t : public QTranslator {
 public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* _text, const char*, int) const override {
        return QLatin1String(_text) == QLatin1String("word") ? QStringLiteral("parola") : QString();
    }
};
