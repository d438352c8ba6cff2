#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/LayerMaker.h>
#include <marlet/project/CompositionAssetImpl.h>
#include <marlet/project/InstancesXml.h>

namespace marlet::project
{

namespace
{

template <class Xml, class Self> void CompositionChildren(Xml &xml, Self &self)
{
    xml.Child("ID", self.id);
    xml.Child("Name", self.name);
    xml.Child("ParentFolderID", self.parentFolderID);
    xml.Child("CTI", self.currentTimeIndicator);
    xml.Child("InPoint", self.inPoint);
    xml.Child("OutPoint", self.outPoint);
    xml.Child("TimelineZoom", self.timelineZoom);
    xml.Child("SplitterPosition", self.splitterPosition);
    xml.Child("TimelineTimeFormat", self.timelineTimeFormat);
    xml.Child("TimelineSnapMode", self.timelineSnapMode);
}

} // namespace

CompositionAsset::CompositionAsset(const XmlCursor &element,
                                   const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                   const Abstract3DEffectFactory &effectFactory,
                                   ProjectTextureImageCache &textures)
    : CompositionAsset()
{
    Deserialize(element, pluginManager, effectFactory, textures);
}

std::shared_ptr<CompositionAsset> CompositionAsset::CreateFromXml(
    const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
    const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures)
{
    const XmlDocument document(xml);
    return std::shared_ptr<CompositionAsset>(
        new CompositionAsset(document.Root(), pluginManager, effectFactory, textures));
}

void CompositionAsset::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, "CompositionAsset", 0, impl_->kept);
    CompositionChildren(writer, *impl_);
    impl_->settings.Serialize(writer);
    impl_->renderSettings.Serialize(writer);
    {
        const XmlElement layers(writer, "Layers");
        for (const std::shared_ptr<AbstractLayer> &layer : Layers())
            if (layer)
                layer->Serialize(writer, textures);
    }
    WriteInstances(writer, *impl_->instances);
    impl_->viewerPanelState.Serialize(writer);
}

WideString CompositionAsset::Serialize(const ProjectTextureImageCache &textures) const
{
    return XmlText([&](XmlWriter &writer) { Serialize(writer, textures); });
}

void CompositionAsset::Deserialize(const XmlCursor &element,
                                   const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                   const Abstract3DEffectFactory &effectFactory,
                                   ProjectTextureImageCache &textures)
{
    element.RequireHeader("CompositionAsset", 0);
    // Aside, since plug-ins and 3D effects can fail at any layer: the composition is then as it was.
    CompositionFields read(*impl_);
    LayerList layers;
    CompositionChildren(element, read);
    if (const XmlCursor settings = element.Find("AudioVideoSettings"); !settings.IsNull())
        read.settings = AudioVideoSettings(settings);
    if (const XmlCursor settings = element.Find("RenderSettings"); !settings.IsNull())
        read.renderSettings = CompositionRenderSettings(settings);
    for (XmlCursor child = element.Find("Layers").FirstChild(); !child.IsNull(); child = child.Next())
        if (const auto layer = LayerMaker::Read(child, pluginManager, effectFactory, textures))
            layers.Add(layer);
    if (const XmlCursor viewer = element.Find("ViewerState"); !viewer.IsNull())
        impl_->viewerPanelState = PanelRenderState(viewer);
    PassInstances(element);
    read.kept = KeptXml(element);
    static_cast<CompositionFields &>(*impl_) = std::move(read);
    Layers().swap(layers);
}

void CompositionAsset::Deserialize(const WideString &xml,
                                   const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                   const Abstract3DEffectFactory &effectFactory,
                                   ProjectTextureImageCache &textures)
{
    const XmlDocument document(xml);
    Deserialize(document.Root(), pluginManager, effectFactory, textures);
}

} // namespace marlet::project
