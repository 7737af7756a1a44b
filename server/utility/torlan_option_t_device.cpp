// What the device tells about itself.
#include <optional>

#include "utility/torlan_option_t.h"
#include "utility/torlan_option_t_log.h"
#include "utility/utility_t.h"

namespace utility {

namespace {

/// The property's text, its white space simplified; nothing when it could not be read.
std::optional<QString> read_property(const char* _name) {
    QString output;
    QString error;
    const int result = utility_t::execProcess(QStringLiteral("getprop"),
                                              {QString::fromLatin1(_name)}, 2000, output, error);
    return result == 0 ? std::optional(output) : std::nullopt;
}

/// "it-IT" gives "it_IT", "en-US" gives "en_EN": the shape of the default language.
QString language_of_locale(const QString& _locale) {
    const QString language = _locale.split(QLatin1Char('-')).first();
    return language + QLatin1Char('_') + language.toUpper();
}

}  // namespace

QString torlan_option_t::read_language() {
    torlan_option_t* const options = instance;
    if (options == nullptr) {
        return {};
    }
    const QString before = options->language;
    const QString locale = read_property("persist.sys.locale").value_or(QString());
    if (locale.isEmpty()) {
        options->language = default_language;
        log_option(QStringLiteral("Set unknown language ... ") + options->language, 3, __func__,
                   __LINE__);
    } else {
        options->language = language_of_locale(locale);
    }
    if (options->language != before) {
        const QStringList names = traslators.keys();
        for (const QString& name : names) {
            removeTranslator(name, traslators.value(name));
        }
    }
    return Language();
}

QString torlan_option_t::read_manufacture() {
    torlan_option_t* const options = instance;
    if (options == nullptr) {
        return {};
    }
    const std::optional<QString> manufacturer = read_property("ro.product.manufacturer");
    if (!manufacturer) {
        log_option(QStringLiteral("Unknown manufacturer ... "), 3, __func__, __LINE__);
    }
    options->manufacturer = manufacturer.value_or(unknown_language);
    return Manufacturer();
}

database::definition::type_brand_t torlan_option_t::read_brand() {
    torlan_option_t* const options = instance;
    if (options == nullptr) {
        return Brand();
    }
    const std::optional<QString> brand = read_property("ro.product.brand");
    if (!brand) {
        log_option(QStringLiteral("Unknown brand apply Kelma ... "), 3, __func__, __LINE__);
    }
    options->brand = type_brand_t::fromString(brand.value_or(unknown_language));
    return Brand();
}

QStringList torlan_option_t::read_image_version() {
    torlan_option_t* const options = instance;
    if (options == nullptr) {
        return {};
    }
    const std::optional<QString> version = read_property("ro.build.display.id");
    options->image_version = version.value_or(QString());
    if (version) {
        options->image_versions = version->split(QLatin1Char('-'));
    } else {
        options->image_versions = QStringList(3, QStringLiteral("0"));
        log_option(QStringLiteral("Unknown image version ... "), 3, __func__, __LINE__);
    }
    return ImageVersions();
}

}  // namespace utility
