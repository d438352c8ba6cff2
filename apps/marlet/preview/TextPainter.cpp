#include "TextPainter.h"

#include "Values.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr int kLongestSide = 8192;
constexpr qreal kTrackingUnits = 1000; ///< to the size of the font

QString ToQString(const WideString &text)
{
    return QString::fromStdU16String(text);
}

QTextCharFormat CharFormat(const TextLayer::Format &format)
{
    QFont font(ToQString(format.family));
    font.setStyleName(ToQString(format.style));
    font.setPixelSize(std::clamp(format.size, 1, 2000));
    const auto tracking = static_cast<qreal>(format.tracking) / kTrackingUnits * font.pixelSize();
    font.setLetterSpacing(QFont::AbsoluteSpacing, std::isfinite(tracking) ? tracking : 0);
    QTextCharFormat result;
    result.setFont(font);
    result.setForeground(ToQColor(format.fillColor));
    if (format.strokeWidth > 0)
        result.setTextOutline(QPen(ToQColor(format.strokeColor), static_cast<qreal>(format.strokeWidth)));
    return result;
}

struct Paragraph {
    QString text;
    QList<QTextLayout::FormatRange> runs;
    Justification justification = Justification::Left;
    qreal leading = 0;

    void Append(char16_t unit, const TextLayer::Format *format, const TextLayer::Format *before)
    {
        if (format && (runs.isEmpty() || format != before)) {
            runs.append({static_cast<int>(text.size()), 0, CharFormat(*format)});
            leading = std::max(leading, static_cast<qreal>(format->leading));
        }
        text.append(QChar(unit));
        if (format)
            ++runs.last().length;
    }
};

std::vector<Paragraph> Paragraphs(const TextLayer &layer)
{
    std::vector<Paragraph> paragraphs(1);
    const TextLayer::Format *before = nullptr;
    for (const TextLayer::Token *token = layer.Text().first.get(); token; token = token->next.get()) {
        if (token->type == TextLayer::Token::kParagraph) {
            paragraphs.back().justification = Justification{static_cast<int>(token->justification)};
            paragraphs.emplace_back();
            before = nullptr;
        } else {
            paragraphs.back().Append(token->character, token->format.get(), before);
            before = token->format.get();
        }
    }
    return paragraphs;
}

Qt::Alignment AlignmentOf(Justification justification)
{
    if (justification == Justification::Centred)
        return Qt::AlignHCenter;
    return justification == Justification::Right ? Qt::AlignRight : Qt::AlignLeft;
}

/// The text in lines, from the upper left corner of its frame on.
class TextBlock
{
public:
    TextBlock(const TextLayer &layer, qreal width)
    {
        qreal y = 0;
        for (const Paragraph &paragraph : Paragraphs(layer)) {
            auto layout = std::make_unique<QTextLayout>(paragraph.text);
            layout->setFormats(paragraph.runs);
            QTextOption option(AlignmentOf(paragraph.justification));
            option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
            layout->setTextOption(option);
            layout->beginLayout();
            for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
                line.setLineWidth(width);
                line.setPosition({0, y});
                y += paragraph.leading > 0 ? paragraph.leading : line.height();
                bounds_ |= line.naturalTextRect();
            }
            layout->endLayout();
            layouts_.push_back(std::move(layout));
        }
    }

    QRectF Bounds() const { return bounds_; }

    void Draw(QPainter &painter, QPointF corner) const
    {
        for (const auto &layout : layouts_)
            layout->draw(&painter, corner);
    }

private:
    std::vector<std::unique_ptr<QTextLayout>> layouts_;
    QRectF bounds_;
};

int SideOf(float length)
{
    return length > 0 ? static_cast<int>(std::ceil(std::min(length, static_cast<float>(kLongestSide)))) : 0;
}

} // namespace

Surface PaintText(const TextLayer &layer)
{
    Surface surface;
    surface.content = {SideOf(layer.Width()), SideOf(layer.Height())};
    surface.origin = {static_cast<double>(layer.MinX()), static_cast<double>(layer.MinY())};
    const TextBlock text(layer, surface.content.width());
    const QRect all = (text.Bounds() | QRectF(QPointF(), surface.content)).toAlignedRect() &
                      QRect(-kLongestSide, -kLongestSide, 2 * kLongestSide, 2 * kLongestSide);
    surface.corner = -all.topLeft();
    surface.picture = QImage(all.size(), QImage::Format_ARGB32_Premultiplied);
    if (surface.picture.isNull())
        return surface;
    surface.picture.fill(Qt::transparent);
    QPainter painter(&surface.picture);
    painter.setRenderHint(QPainter::Antialiasing);
    text.Draw(painter, surface.corner);
    return surface;
}

} // namespace marlet::tool
