#pragma once

#include <QFileDevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

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
};

}  // namespace utility
