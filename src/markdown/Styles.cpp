#include "markdown/Styles.h"

#include <cmath>

namespace quillery {

Color Color::fromHsba(double hue, double saturation, double brightness, double alpha) {
    // The usual hexcone conversion: the hue, taken round the wheel, picks one of six sectors.
    double scaled = (hue - std::floor(hue)) * 6.0;
    if (!(scaled >= 0.0 && scaled < 6.0)) {
        scaled = 0.0; // a hue of exactly 1 after rounding, or not a number
    }
    const double sector = std::floor(scaled);
    const double fraction = scaled - sector;
    const double p = brightness * (1.0 - saturation);
    const double q = brightness * (1.0 - saturation * fraction);
    const double t = brightness * (1.0 - saturation * (1.0 - fraction));
    const double v = brightness;
    switch (static_cast<int>(sector)) {
    case 0:
        return {v, t, p, alpha};
    case 1:
        return {q, v, p, alpha};
    case 2:
        return {p, v, t, alpha};
    case 3:
        return {p, q, v, alpha};
    case 4:
        return {t, p, v, alpha};
    default:
        return {v, p, q, alpha};
    }
}

namespace fontfamilies {

// From Debian's fonts-dejavu-core; they stand in for Geneva, Georgia and Courier.
const std::string& sans() {
    static const std::string family = "DejaVu Sans";
    return family;
}

const std::string& serif() {
    static const std::string family = "DejaVu Serif";
    return family;
}

const std::string& monospace() {
    static const std::string family = "DejaVu Sans Mono";
    return family;
}

} // namespace fontfamilies

FontSpec FontForTextStyle(MyFontTextStyle style) {
    switch (style) {
    case MyFontTextStyle::title1:
        return {fontfamilies::serif(), 22};
    case MyFontTextStyle::title2:
        return {fontfamilies::serif(), 18};
    case MyFontTextStyle::headline:
        return {fontfamilies::serif(), 16};
    case MyFontTextStyle::subheadline:
        return {fontfamilies::sans(), 14};
    case MyFontTextStyle::footnote:
        return {fontfamilies::sans(), 10};
    case MyFontTextStyle::body:
        break;
    }
    return {fontfamilies::sans(), 14};
}

} // namespace quillery
