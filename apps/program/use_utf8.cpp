#include "program/use_utf8.h"

#include <langinfo.h>

#include <QByteArray>
#include <clocale>

namespace torlan {

void use_utf8() {
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        qputenv("LC_ALL", "C.UTF-8");
    }
}

}  // namespace torlan
