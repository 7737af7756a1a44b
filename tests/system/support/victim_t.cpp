#include "system/support/victim_t.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTest>
#include <algorithm>

#include "kit/lamps_home.h"
#include "system/support/api_user.h"

namespace support {

bool victim_t::sign_in() {
    return client.sign_in(host->port(), user, kit::password_of(user)) == 0 &&
           client.subscribe(QStringLiteral("local/api/v1/%1/me/status/#").arg(user));
}

waits_t victim_t::ask(int _times, int _at_least_ms) {
    const QDeadlineTimer least(_at_least_ms);
    std::vector<double> waited;
    waits_t waits;
    const qint64 broker = host->broker_pid();
    for (int index = 0; waits.unanswered == 0 && (index < _times || !least.hasExpired()); ++index) {
        QElapsedTimer clock;
        clock.start();
        const QJsonObject answer =
            client.request(request_topic(user, "get", kit::lamp_id(index % 100)));
        waits.unanswered += answer.contains("data") ? 0 : 1;
        waited.push_back(double(clock.nsecsElapsed()) / 1e6);
        client.forget();
        QTest::qWait(2);
        waits.server = std::max(waits.server, host->resident_mib());
        waits.broker = std::max(waits.broker, host_process_t::resident_mib_of(broker));
    }
    std::sort(waited.begin(), waited.end());
    waits.median = waited[waited.size() / 2];
    waits.p99 = waited[waited.size() * 99 / 100];
    waits.longest = waited.back();
    return waits;
}

}  // namespace support
