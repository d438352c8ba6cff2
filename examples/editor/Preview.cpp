#include "Preview.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/SolidAsset.h>

#include <QPainter>

#include <boost/variant/get.hpp>

#include <algorithm>
#include <iterator>

namespace editor
{

namespace
{

/// What is drawn of a layer in its own pixels, Y up. Empty if nothing is.
struct Card {
    QRectF frame;
    QColor fill;
    QString text;
};

QString TextOf(const TextLayer &layer)
{
    QString text;
    for (auto token = layer.Text().first; token; token = token->next)
        text += token->type == TextLayer::Token::kCharacter ? QChar(token->character) : QChar('\n');
    return text;
}

Card CardOf(const AbstractLayer &layer, const AssetList &assets)
{
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        return {QRectF(text->MinX(), text->MinY(), text->Width(), text->Height()), {}, TextOf(*text)};
    const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
    const auto asset = shown ? shown->Asset(assets) : nullptr;
    if (!asset || !asset->HasVideo())
        return {};
    const QRectF frame(0, 0, asset->Width(), asset->Height());
    if (const auto *solid = dynamic_cast<const SolidAsset *>(asset.get())) {
        const auto &color = solid->Color();
        return {frame, QColor::fromRgbF(color.R, color.G, color.B, color.A), {}};
    }
    return {frame, Qt::darkGray, QString::fromStdU16String(layer.Name())};
}

// The depth of the matrix is left out: there is no camera here.
QTransform Flat(const AbstractLayer::Matrix &world)
{
    return {world(0, 0), world(1, 0), world(0, 1), world(1, 1), world(0, 3), world(1, 3)};
}

void Draw(QPainter &painter, const Card &card)
{
    if (card.fill.isValid())
        painter.fillRect(card.frame, card.fill);
    // Texts of the screen have Y down.
    painter.translate(card.frame.center());
    painter.scale(1, -1);
    QFont font = painter.font();
    font.setPixelSize(std::max(1, static_cast<int>(card.frame.height() * 0.6)));
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(card.frame.translated(-card.frame.center()), Qt::AlignCenter, card.text);
}

} // namespace

Preview::Preview(Document &document)
    : document_(document),
      listener_(document.History(), [this](const ChangeNotice &notice) { Changed(notice); })
{
    setMinimumSize(480, 270);
}

void Preview::SetFrame(int frame)
{
    frame_ = frame;
    update();
}

QTransform Preview::FromComposition() const
{
    const CompositionAsset &composition = *document_.Composition();
    const qreal scale =
        std::min(width() / qreal(composition.Width()), height() / qreal(composition.Height()));
    return QTransform::fromTranslate(width() / 2.0, height() / 2.0).scale(scale, -scale);
}

// The picture is drawn again only if the frame that is shown may look different.
void Preview::Changed(const ChangeNotice &notice)
{
    for (const StaleFrames &stale : notice.Stale())
        if (stale.timeline == document_.Composition()->ID() && stale.first <= frame_ && frame_ < stale.end)
            update();
}

void Preview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const CompositionAsset &composition = *document_.Composition();
    painter.setTransform(FromComposition());
    painter.setClipRect(QRectF(-composition.Width() / 2.0, -composition.Height() / 2.0, composition.Width(),
                               composition.Height()));
    painter.fillRect(painter.clipBoundingRect(), Qt::black);
    // The first layer is on top.
    const auto &layers = composition.Layers();
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
        if ((*layer)->IsVisible() && (*layer)->StartFrame() <= frame_ && frame_ < (*layer)->EndFrame()) {
            painter.save();
            Paint(painter, *layer);
            painter.restore();
        }
}

void Preview::Paint(QPainter &painter, const std::shared_ptr<AbstractLayer> &layer) const
try {
    const Card card = CardOf(*layer, document_.Contents()->Assets());
    if (card.frame.isEmpty())
        return;
    const int time = layer->GlobalFrameToRelativeTime(frame_, document_.Composition());
    const auto world = layer->WorldTransformationAtTime(time, document_.Contents(), false);
    painter.setOpacity(boost::get<float>(layer->Animation().ValueAtTime("opacity", time)) / 100.0);
    painter.setTransform(Flat(world), true);
    Draw(painter, card);
} catch (const std::exception &) {
    // A file may name a parent that is not there: such a layer stands nowhere.
}

} // namespace editor
