#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/project/PanelRenderState_Impl.h>

namespace marlet::project
{

namespace
{

using State = PanelRenderState::State;

constexpr const char *kLayoutNames[] = {"Layout0", "Layout1", "Layout2", "Layout3", "Layout4"};
constexpr const char *kSplitterNames[] = {"Sp0", "Sp1", "Sp2"};
constexpr const char *kPositionNames[] = {"Pos0", "Pos1", "Pos2", "Pos3"};

template <class Xml, class Self> void StateAttributes(Xml &xml, Self &state)
{
    xml.Attribute("ID", state.ID);
    xml.Attribute("Active", state.Active);
    xml.Attribute("Type", state.Type);
    xml.Attribute("Layout", state.Layout);
    xml.Attribute("CameraScale", state.CameraScale);
    xml.Attribute("TextureScale", state.TextureScale);
}

template <class Xml, class Self> void OptionFields(Xml &xml, Self &state)
{
    xml.Attribute("Gz", state.Gz);
    xml.Attribute("Ch", state.Ch);
    xml.Attribute("Qu", state.Qu);
    xml.Attribute("Li", state.Li);
    xml.Attribute("Sh", state.Sh);
    xml.Attribute("MB", state.MB);
    xml.Attribute("DOF", state.DOF);
    xml.Attribute("Vol", state.Vol);
    xml.Attribute("WoAx", state.WoAx);
    xml.Attribute("TrCb", state.TrCb);
    xml.Child("BGColor", state.BGColor);
}

void Axis(XmlWriter &writer, const char *name, float value)
{
    writer.Attribute(name, value);
}

void Axis(const XmlCursor &element, const char *name, float &value)
{
    element.RequireAttribute(name);
    element.Attribute(name, value);
}

template <class Xml, class Place> void Axes(Xml &xml, Place &place)
{
    Axis(xml, "X", place.X);
    Axis(xml, "Y", place.Y);
    if constexpr (requires { place.Z; })
        Axis(xml, "Z", place.Z);
}

template <class Point> void Coordinates(XmlWriter &writer, const char *name, const Point &point)
{
    const XmlElement element(writer, name);
    Axes(writer, point);
}

template <class Point> void Coordinates(const XmlCursor &parent, const char *name, Point &point)
{
    const XmlCursor element = parent.Require(name);
    Axes(element, point);
}

template <class Xml, class Self> void StateCoordinates(Xml &xml, Self &state)
{
    Coordinates(xml, "TexturePosition", state.TexturePosition);
    Coordinates(xml, "CameraPosition", state.CameraPosition);
    Coordinates(xml, "CameraRotation", state.CameraRotation);
}

void WriteState(XmlWriter &writer, const State &state)
{
    const XmlElement element(writer, "State");
    StateAttributes(writer, state);
    StateCoordinates(writer, state);
    const XmlElement options(writer, "Options");
    OptionFields(writer, state);
}

/// Nothing for a view without options, which counts as none.
std::optional<State> ReadState(const XmlCursor &element)
{
    State state;
    StateAttributes(element, state);
    StateCoordinates(element, state);
    const XmlCursor options = element.Find("Options");
    if (options.IsNull())
        return std::nullopt;
    OptionFields(options, state);
    return state;
}

void WriteLayout(XmlWriter &writer, const char *name, const PanelLayout &layout)
{
    const XmlElement element(writer, name);
    if (layout.HasSplitters())
        for (std::size_t i = 0; i < layout.splitters.size(); ++i)
            writer.Attribute(kSplitterNames[i], layout.splitters[i]);
    for (std::size_t i = 0; i < layout.positions.size(); ++i)
        if (layout.positions[i])
            writer.Attribute(kPositionNames[i], *layout.positions[i]);
}

} // namespace

void PanelRenderState::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, "ViewerState", 0);
    writer.Child("CurrentLayout", impl_->layout);
    for (std::size_t i = 0; i < impl_->layouts.size(); ++i)
        WriteLayout(writer, kLayoutNames[i], impl_->layouts[i]);
    const XmlElement views(writer, "Views");
    for (const State *state : impl_->viewStates)
        WriteState(writer, *state);
}

void PanelRenderState::Deserialize(const XmlCursor &element)
{
    element.RequireHeader("ViewerState", 0);
    element.Child("CurrentLayout", impl_->layout);
    // Positions first: the default entries that they make for their views are then replaced.
    for (std::size_t i = 0; i < impl_->layouts.size(); ++i)
        if (const XmlCursor layout = element.Find(kLayoutNames[i]); !layout.IsNull())
            ReadLayout(layout, static_cast<LayoutType>(i));
    for (XmlCursor child = element.Find("Views").Find("State"); !child.IsNull(); child = child.Next("State"))
        if (const std::optional<State> state = ReadState(child))
            impl_->AddState(*state);
        else
            Disown(child);
}

void PanelRenderState::ReadLayout(const XmlCursor &element, LayoutType type)
{
    PanelLayout &layout = impl_->LayoutOf(type);
    if (layout.HasSplitters())
        for (std::size_t i = 0; i < layout.splitters.size(); ++i)
            element.Attribute(kSplitterNames[i], layout.splitters[i]);
    for (std::size_t i = 0; i < layout.positions.size(); ++i)
        if (const std::string_view id = element.AttributeText(kPositionNames[i]); !id.empty())
            SetViewStateForPosition(kytl::KyID::FromString(id), type, static_cast<int>(i));
}

} // namespace marlet::project
