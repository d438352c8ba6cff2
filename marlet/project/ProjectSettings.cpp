#include <marlet/project/ProjectSettings.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

namespace marlet::project
{

struct ProjectSettings_Impl {
    BPC colorBitDepth{1000};
};

namespace
{

template <class Xml, class Self> void ProjectSettingsFields(Xml &xml, Self &self)
{
    xml.Child("BPC", self.colorBitDepth);
}

} // namespace

ProjectSettings::ProjectSettings() = default;

ProjectSettings::~ProjectSettings() = default;

BPC ProjectSettings::ColorBitDepth() const
{
    return impl_->colorBitDepth;
}

void ProjectSettings::SetColorBitDepth(BPC depth)
{
    impl_->colorBitDepth = depth;
}

void ProjectSettings::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, "ProjectSettings", 0);
    ProjectSettingsFields(writer, *impl_);
}

void ProjectSettings::Deserialize(const XmlCursor &element)
{
    element.RequireHeader("ProjectSettings", 0);
    ProjectSettingsFields(element, *impl_);
}

} // namespace marlet::project
