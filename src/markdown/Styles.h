#pragma once

#include "markdown/StyledRun.h"

#include <optional>
#include <string>

namespace quillery {

// A colour as plain values in 0…1; the app turns it into its toolkit's colour.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static Color fromHsba(double hue, double saturation, double brightness, double alpha);
    friend bool operator==(const Color&, const Color&) = default;
};

// The style carried by one slot of the styler: its colour, opaque black unless set.
struct BasicStyles {
    Color color;
};

enum class MyFontTextStyle { body, title1, title2, headline, subheadline, footnote };

// A font family and size. When the family cannot be had, the app uses the system font at the
// same size.
struct FontSpec {
    std::string family;
    double pointSize = 0;
    bool bold = false;
    bool italic = false;
    friend bool operator==(const FontSpec&, const FontSpec&) = default;
};

FontSpec FontForTextStyle(MyFontTextStyle style);

// The Linux families that stand in for the sans, serif and monospace faces of the design.
namespace fontfamilies {
const std::string& sans();
const std::string& serif();
const std::string& monospace();
} // namespace fontfamilies

// How one text run is shown: the font of its line type, its colour and its link target.
struct RunPresentation {
    FontSpec font;
    Color foreground;
    std::optional<std::string> link;
};

} // namespace quillery
