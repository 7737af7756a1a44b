#include "http/loopback.h"

#include <QString>

bool is_loopback_host(QStringView _host) {
    return _host == QLatin1String("127.0.0.1") || _host == QLatin1String("::1") ||
           _host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0;
}
