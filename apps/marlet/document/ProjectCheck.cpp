#include "ProjectCheck.h"

#include "Document.h"
#include "output/QuietStandardError.h"
#include "plugins/Ribbon.h"

#include <marlet/checks/Validate.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/TextureImage.h>

#include <memory>

namespace marlet::tool
{

using namespace project;

namespace
{

/// What is wrong with the ribbons of one composition.
class RibbonChecker
{
public:
    explicit RibbonChecker(const CompositionAsset &composition) : composition_(composition) {}

    std::vector<Finding> Run()
    {
        for (const LayerPointer &layer : composition_.Layers())
            if (const auto *holder = dynamic_cast<const Effect3DLayer *>(layer.get()))
                if (const auto ribbon = std::dynamic_pointer_cast<const Ribbon>(holder->Effect()))
                    Check(*holder, *ribbon);
        return std::move(findings_);
    }

private:
    void Check(const Effect3DLayer &layer, const Ribbon &ribbon)
    {
        const NarrowString place = "layer \"" + ToUtf8(layer.Name()) + "\" of composition \"" +
                                   ToUtf8(composition_.Name()) + "\", 3D effect";
        const std::vector<kytl::KyID> ids{ribbon.ID(), layer.ID(), composition_.ID()};
        constexpr auto kWarning = Finding::Severity::Warning;
        for (Finding &finding : Validate(ribbon.Properties(), Ribbon().Properties(), place)) {
            finding.ids = ids;
            findings_.push_back(std::move(finding));
        }
        const kytl::KyID followed = ribbon.FollowedLayer();
        if (!followed.IsNull() && !composition_.FindLayerByID(followed))
            findings_.push_back({kWarning,
                                 FindingKind::DanglingID,
                                 place + ", property " + Ribbon::kFollowed,
                                 "the layer " + followed.ToNarrowString() + " does not exist",
                                 ids,
                                 followed,
                                 {},
                                 Ribbon::kFollowed});
        if (ribbon.Texture() && !ribbon.Texture()->LoadSuccessful())
            findings_.push_back(
                {kWarning,
                 FindingKind::MissingFile,
                 place,
                 "the texture " + ToUtf8(ribbon.Texture()->FilePath()) + " cannot be read as an image",
                 ids,
                 {},
                 {}});
    }

    const CompositionAsset &composition_;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> CheckProject(const Project &project)
{
    const QuietStandardError quiet;
    std::vector<Finding> findings = Validate(project);
    for (const CompositionPointer &composition : Compositions(project))
        for (Finding &finding : RibbonChecker(*composition).Run())
            findings.push_back(std::move(finding));
    return findings;
}

} // namespace marlet::tool
