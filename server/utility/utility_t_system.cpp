// Identifiers, hashes, external programs and waits.
#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <QUuid>

#include "utility/day_time_wait.h"
#include "utility/identifier_text.h"
#include "utility/torlan_option_t.h"
#include "utility/utility_t.h"
#include "utility/utility_t_log.h"

namespace utility {

namespace {

QString sha1(const QByteArray& _bytes) {
    const QByteArray digest = QCryptographicHash::hash(_bytes, QCryptographicHash::Sha1);
    return QString::fromLatin1(digest.toHex());
}

void log_execution(const QString& _program, const QString& _arguments, int _exit_code,
                   const QString& _output, const QString& _error) {
    const char* const function = "execProcess";
    log_utility(QStringLiteral("%1 %2 EXIT CODE: %3")
                    .arg(_program, _arguments, QString::number(_exit_code)),
                6, function, 539);
    log_utility(QStringLiteral("%1 %2 STANDARD OUTPUT: %3").arg(_program, _arguments, _output), 6,
                function, 540);
    log_utility(QStringLiteral("%1 %2 STANDARD ERROR : %3").arg(_program, _arguments, _error), 6,
                function, 541);
}

void serve_events(int _at_most_ms) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, _at_most_ms);
}

}  // namespace

QString utility_t::generateUUId() {
    return plain_uuid(QUuid::createUuid().toString());
}

QString utility_t::generateNumberUUId() {
    return number_uuid(QUuid::createUuid().toString());
}

QString utility_t::generateInstallationId() {
    return installation_uuid(QUuid::createUuid().toString());
}

QString utility_t::getHash(const QString& text) {
    return sha1(text.toUtf8());
}

QString utility_t::getHash(const QJsonObject& object) {
    return getHash(QJsonObjectToQString(object, QJsonDocument::Compact));
}

QString utility_t::getHash(const QString& path, QCryptographicHash::Algorithm algorithm) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QCryptographicHash hash(algorithm);
    hash.addData(&file);
    // The hash takes a read that fails for the end of the file.
    if (file.error() != QFileDevice::NoError) {
        return {};
    }
    return QString::fromLatin1(hash.result().toHex());
}

int utility_t::execProcess(const QString& program, const QStringList& arguments, const int& timeout,
                           QString& standardOutput, QString& standardError) {
    QProcess process;
    process.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    // The getter takes no lock: createInstance() of the options runs programs inside its own.
    if (torlan_option_t::Platform() == QLatin1String("android_embedded")) {
        process.setWorkingDirectory(QStringLiteral("/data/local"));
    }
    process.start(program, arguments, QIODevice::ReadWrite);
    process.waitForFinished(timeout);

    const int exit_code = process.exitCode();
    standardOutput = QString::fromUtf8(process.readAllStandardOutput()).simplified();
    standardError = QString::fromUtf8(process.readAllStandardError()).simplified();
    log_execution(program, arguments.join(QLatin1Char(' ')), exit_code, standardOutput,
                  standardError);
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished();
    }
    return exit_code;
}

void utility_t::aSleep(int seconds) {
    log_utility(QStringLiteral("Wait ") + QString::number(seconds) + QStringLiteral(" sec...."), 6,
                "aSleep", 117);
    serve_seconds(seconds, &QTime::currentTime, []() { serve_events(100); });
}

void utility_t::amSleep(int milliseconds) {
    log_utility(
        QStringLiteral("Wait ") + QString::number(milliseconds) + QStringLiteral(" millisec...."),
        6, "amSleep", 124);
    serve_milliseconds(milliseconds, &QTime::currentTime, []() { serve_events(50); });
}

bool utility_t::HaveEventLoop(QThread* thread) {
    if (thread == nullptr || thread->eventDispatcher() == nullptr) {
        log_utility(QStringLiteral("Not have event loop"), 2, "HaveEventLoop", 474);
        return false;
    }
    log_utility(QStringLiteral("Have event loop"), 2, "HaveEventLoop", 479);
    return true;
}

}  // namespace utility
