#include "accounts/broker_report_t.h"

#include <QList>

namespace accounts {

namespace {

QString field(const QByteArray& _word) {
    return _word == "-" ? QString() : QString::fromUtf8(QByteArray::fromPercentEncoding(_word));
}

std::optional<broker_event_t> read_event(const QByteArrayList& _words) {
    if (_words.size() != 9) {
        return {};
    }
    bool good[3] = {};
    broker_event_t event;
    event.kind = field(_words[1]);
    event.count = _words[2].toLongLong(&good[0]);
    event.first = _words[3].toLongLong(&good[1]);
    event.last = _words[4].toLongLong(&good[2]);
    event.user = field(_words[5]);
    event.client = field(_words[6]);
    event.address = field(_words[7]);
    event.detail = field(_words[8]);
    return good[0] && good[1] && good[2] ? std::optional(event) : std::nullopt;
}

void read_line(broker_report_t* _report, const QByteArrayList& _words) {
    if (_words[0] == "event") {
        if (const auto event = read_event(_words)) {
            _report->events.append(*event);
        }
    } else if (_words[0] == "lost" && _words.size() == 2) {
        _report->lost = _words[1].toLongLong();
    } else if (_words[0] == "delete" && _words.size() == 2) {
        _report->sessions.append(field(_words[1]));
    }
}

}  // namespace

std::optional<broker_report_t> broker_report_t::parse(const QByteArray& _text) {
    const QByteArrayList lines = _text.split('\n');
    const QByteArrayList head = lines[0].split(' ');
    bool good = false;
    broker_report_t report;
    report.number = head.value(1).toULongLong(&good);
    if (head[0] != "report" || head.size() != 2 || !good) {
        return {};
    }
    for (qsizetype i = 1; i < lines.size(); ++i) {
        read_line(&report, lines[i].split(' '));
    }
    return report;
}

}  // namespace accounts
