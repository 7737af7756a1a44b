#pragma once

#include <QCryptographicHash>
#include <QFileDevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

class QThread;

namespace utility {

/// Static helpers shared by the whole server. Any thread. Nothing throws; failures are logged
/// and give an empty or false result.
class utility_t {
 public:
    /// The value at @p path inside @p value (see json_path_step_t). A bracket index counts only
    /// when a further segment follows: "list[2]" is the whole list. Missing: undefined; below a
    /// scalar: that scalar.
    static QJsonValue getJsonValue(QJsonValue& value, const QString& path);
    /// The same inside an object.
    static QJsonValue getJsonObjValue(const QJsonObject& object, const QString& path);

    /// Stores @p value at @p path inside @p target; null deletes. Missing objects on the way are
    /// not made: the value replaces the first scalar or missing member. False: nothing to delete.
    static bool updateJsonValue(QJsonValue& target, const QString& path, const QJsonValue& value);
    /// The same on a document's root.
    static bool updateJsonValue(QJsonDocument& document, const QString& path,
                                const QJsonValue& value);

    /// Parses text; empty on a parse error (logged) and when the root is of the other kind.
    static QJsonObject QStringToQJsonObject(const QString& text);
    static QJsonArray QStringToQJSonArray(const QString& text);
    /// Parses text; an empty object on a parse error (logged).
    static QJsonValue QStringToQJsonValue(const QString& text);

    static QString QJsonArrayToQString(const QJsonArray& array, QJsonDocument::JsonFormat format);
    static QString QJsonObjectToQString(const QJsonObject& object,
                                        QJsonDocument::JsonFormat format);
    /// The entries as texts, by Qt's variant rules.
    static QStringList QJsonArrayToQStringList(const QJsonArray& array);

    /// 1 true, 0 false, -1 not a boolean. The number 0 gives 1: callers test numbers for -1 only.
    static int QJsonValueToBool(QJsonValue value);
    /// The value as a number's text; empty when it is none. Digit strings stay as they are.
    static QString QjsonValueToNumber(QJsonValue value);

    /// The object in a JSON file; empty when it is missing or broken (logged).
    static QJsonObject readFromFile(const QString& path);
    /// Writes @p object as indented JSON. No flags: readable by all, writable by the owner. A
    /// file that cannot be opened is not reported: the result is true.
    static bool writeToFile(const QString& path, const QJsonObject& object,
                            QFileDevice::Permissions permissions);
    /// Whether there is anything at @p path.
    static bool fileExists(const QString& path);

    /// Logs the object's text at level 6.
    static void printJsonObject(const QJsonObject& object, QJsonDocument::JsonFormat format);
    /// Logs "Value is ..." at level 4.
    static void printJson(const QJsonValue& value, QJsonDocument::JsonFormat format);

    /// New random identifiers without punctuation: 32 lower-case hexadecimal digits; the number
    /// form has 32 to 64 decimal digits.
    static QString generateUUId();
    static QString generateNumberUUId();
    static QString generateInstallationId();

    /// SHA-1 of a text's UTF-8 or of an object's compact JSON, in lower-case hexadecimal.
    static QString getHash(const QString& text);
    static QString getHash(const QJsonObject& object);
    /// Digest of a whole file; empty when it cannot be read.
    static QString getHash(const QString& path, QCryptographicHash::Algorithm algorithm);

    /// Runs a program and blocks up to @p timeout ms (-1: no limit). The outputs come with their
    /// white space simplified. Returns the exit code; a time-out ends the program and gives 0.
    static int execProcess(const QString& program, const QStringList& arguments, const int& timeout,
                           QString& standardOutput, QString& standardError);

    /// Waits that keep serving the thread's events: expect re-entrance. They compare times of
    /// day, so one that would end after midnight ends at once.
    static void aSleep(int seconds);
    static void amSleep(int milliseconds);
    /// Whether @p thread has an event dispatcher (logged either way).
    static bool HaveEventLoop(QThread* thread);

    /// Dew point by the Magnus formula, rounded to @p precision decimals, on the input's scale.
    /// @param humidity 0 to 100 percent; not checked, 0 gives not-a-number
    static float calculate_dew_point(const float& temperature, const float& humidity,
                                     const bool& fahrenheit, const unsigned int& precision);
    static float fahrenheitToCelsius(const float& value);
    static float celsiusToFahrenheit(const float& value);
};

}  // namespace utility
