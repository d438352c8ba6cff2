#pragma once

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>
#include <marlet/foundation/KyPoint.h>
#include <marlet/foundation/KyVector.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct PanelRenderState_Impl;

/// How the host's viewer panel is split into views, and what each view shows. The library stores it. A layout
/// has a fixed number of positions, from 0, at which views stand. Copies have views of their own with the
/// same IDs, listed in an order that the IDs alone decide. Belongs to the host's interface thread.
class MARLET_EXPORT PanelRenderState
{
public:
    /// Layouts 0 and 1 have one position, 2 to 4 as many as their number and three splitters; 5 is none.
    enum class LayoutType : int {};
    enum class SplitterType : int {};
    /// 2 to 8 give a new view a camera of its own.
    enum class ViewType : int {};

    static constexpr LayoutType kNoLayout{5};

    /// One view. The two-letter members are display options of the host.
    struct State {
        kytl::KyID ID = kytl::KyID::Generate();
        bool Active = false;
        ViewType Type{};
        LayoutType Layout = kNoLayout;
        double CameraScale = 1.0;
        kytl::matl::KyPoint<3, float> CameraPosition{};
        kytl::matl::KyPoint<3, float> initialCameraPosition{}; ///< not saved
        kytl::matl::KyVector<3, float> cameraVector{};         ///< not saved
        kytl::matl::KyVector<3, float> CameraRotation{};       ///< radians
        int viewOption = 1;                                    ///< not saved
        double TextureScale = 1.0;
        kytl::matl::KyPoint<2, float> TexturePosition{};
        int Gz = 0;
        int Ch = 0;
        int Qu = 2;
        bool Li = true;
        bool Sh = true;
        bool MB = true;
        bool DOF = true;
        bool Vol = true;
        bool WoAx = true;
        bool TrCb = false;
        bool displayOption = true; ///< not saved
        kytl::KyColorRGBA_32f BGColor{};
    };

    using StateList = kytl::KyList<State *, std::vector>;

    static PanelRenderState Create();
    PanelRenderState(const PanelRenderState &other);
    PanelRenderState &operator=(PanelRenderState other);
    ~PanelRenderState();
    /// Exchanges everything; views keep their addresses and their order.
    void Swap(PanelRenderState &other) noexcept;

    // A layout is 0 to 4 and a splitter 0 to 2: std::out_of_range for others wherever they are looked up.

    LayoutType Layout() const;
    void SetLayout(LayoutType layout);
    /// A fraction; always 0 for layouts 0 and 1, for which setting it is ignored.
    double LayoutSplitterPosition(LayoutType layout, SplitterType splitter) const;
    void SetLayoutSplitterPosition(LayoutType layout, SplitterType splitter, double position);

    kytl::KyID AddViewState();
    kytl::KyID AddViewState(ViewType type, LayoutType layout);
    /// The last view of that type and layout which stands at none of the layout's positions, or else a new
    /// one.
    kytl::KyID GetOrAddViewState(ViewType type, LayoutType layout);
    bool HasViewState(const kytl::KyID &id) const;
    /// An unknown ID gets an entry with default values, which is not saved and whose own ID is another one.
    /// Addresses stay until the view is removed.
    State &ViewState(const kytl::KyID &id);
    const State &ViewState(const kytl::KyID &id) const;
    /// The views that are saved, in order.
    const StateList &ViewStates() const;
    /// Positions keep the ID.
    void RemoveViewState(const kytl::KyID &id);

    /// Ignored for a position that the layout does not have. A view may stand at several positions.
    void SetViewStateForPosition(const kytl::KyID &id, LayoutType layout, int position);
    /// The null ID if the position is free or not there.
    kytl::KyID ViewStateForPosition(LayoutType layout, int position) const;
    bool HasViewStateForPosition(LayoutType layout, int position) const;
    /// The null ID and -1 if no view in the layout is active.
    kytl::KyID ActiveViewInLayout(LayoutType layout) const;
    int ActivePositionInLayout(LayoutType layout) const;
    /// The views at all other positions of the layout become inactive.
    void SetActiveViewInLayout(LayoutType layout, const kytl::KyID &id);
    void SetActivePositionInLayout(LayoutType layout, int position);
    /// Removes the views at the layout's positions and puts its splitters back.
    void ResetLayout(LayoutType layout);
    /// Removes all views; layout and splitters stay.
    void Clear();

private:
    friend class CompositionAsset;
    friend class EditorSequence;
    friend struct CompositionAsset_Impl;
    friend struct EditorSequence_Impl;

    PanelRenderState();
    explicit PanelRenderState(const XmlCursor &element);

    /// A copy whose views have new IDs. Only the views that are listed come along, in their order; positions
    /// at which no such view stands are free.
    PanelRenderState WithNewViews() const;

    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);
    void ReadLayout(const XmlCursor &element, LayoutType type);

    ValuePtr<PanelRenderState_Impl> impl_;
};

} // namespace marlet::project
