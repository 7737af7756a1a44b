#pragma once

#include <QFile>
#include <QList>
#include <QRegularExpression>
#include <QString>

namespace support {

/// Commands that a document shows, and what it says that they print: the block that follows at
/// once; empty: it does not say.
struct document_block_t {
    QString commands;
    QString printed;
};

/// In the order of the text.
inline QList<document_block_t> document_blocks(const QString& _file) {
    static const QRegularExpression block(
        QStringLiteral("```sh\\n(.*?)```\\n(?:```(?:json|text)\\n(.*?)```)?"),
        QRegularExpression::DotMatchesEverythingOption);
    QFile file(_file);
    QList<document_block_t> found;
    if (file.open(QIODevice::ReadOnly)) {
        for (auto all = block.globalMatch(QString::fromUtf8(file.readAll())); all.hasNext();) {
            const QRegularExpressionMatch match = all.next();
            found.append({match.captured(1), match.captured(2)});
        }
    }
    return found;
}

}  // namespace support
