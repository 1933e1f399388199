#include "ui/main/AvatarDrawing.h"

#include <QXmlStreamReader>
#include <algorithm>
#include <array>
#include <string_view>

namespace halvane::ui {

namespace {

constexpr qsizetype kLongest = 64 * 1024;
constexpr std::array<std::u16string_view, 17> kShapes{
    u"svg",  u"g",        u"defs",    u"title",          u"desc",           u"path", u"rect", u"circle", u"ellipse",
    u"line", u"polyline", u"polygon", u"linearGradient", u"radialGradient", u"stop", u"text", u"tspan"};

bool isShape(QStringView name) {
    return std::ranges::any_of(kShapes, [name](auto shape) { return name == shape; });
}

/// A dash of a millionth is a million strokes. The backslash would hide it in a style.
bool isDashed(const QXmlStreamAttribute& attribute) {
    return attribute.name().contains(u"dash", Qt::CaseInsensitive) || attribute.value().contains(u"dash", Qt::CaseInsensitive) ||
           attribute.value().contains(u'\\');
}

/// Gradients may build on each other, and nothing keeps two from building on one another.
bool pointsElsewhere(const QXmlStreamAttribute& attribute) { return attribute.name() == u"href"; }

}  // namespace

bool AvatarDrawing::isDrawing(const QByteArray& data) {
    const QByteArray beginning = data.left(512).trimmed();
    return beginning.contains("<svg") || beginning.startsWith("<?xml");
}

bool AvatarDrawing::isHarmless(const QByteArray& data) {
    if (data.size() > kLongest) return false;
    QXmlStreamReader reader(data);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
            case QXmlStreamReader::StartElement: {
                const auto attributes = reader.attributes();
                if (!isShape(reader.name()) || std::ranges::any_of(attributes, isDashed) ||
                    std::ranges::any_of(attributes, pointsElsewhere))
                    return false;
                break;
            }
            case QXmlStreamReader::DTD:
            case QXmlStreamReader::ProcessingInstruction:
                return false;
            default:
                break;
        }
    }
    return !reader.hasError();
}

}  // namespace halvane::ui
