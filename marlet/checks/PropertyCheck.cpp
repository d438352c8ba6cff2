#include <marlet/checks/PropertyCheck.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/ValueTypes.h>

#include <bitset>
#include <cmath>
#include <cstdint>

namespace marlet::project
{

namespace
{

using Vector = kytl::matl::KyVector<2, float>;

/// How many key frames have one fault, and where the first of them is.
struct Count {
    std::size_t count = 0;
    int first = 0;

    void Add(int time)
    {
        if (count++ == 0)
            first = time;
    }
    /// "the key frame at 40 ms is", "3 key frames, the first at 40 ms, are"
    NarrowString Text(const char *oneDoes, const char *manyDo) const
    {
        const NarrowString at = std::to_string(first) + " ms";
        return count == 1 ? "the key frame at " + at + " " + oneDoes
                          : Counted(count, "key frame") + ", the first at " + at + ", " + manyDo;
    }
};

bool IsFinite(const Vector &point)
{
    return std::isfinite(point.X) && std::isfinite(point.Y);
}

/// The pieces of a curve lie between neighbours in time.
struct Neighbour {
    int time = 0;
    float outgoing = 0;
    bool holds = false;
};

/// What there is to say of the key frames of one property, after one walk over them.
class KeyFrameSummary
{
public:
    KeyFrameSummary(const KeyFrameList &keys, const PropertyValue &model) : model_(model)
    {
        keys.ForEach([this](const KeyFrame &key) { Take(key); });
    }

    Count wrong; ///< of another type than the property
    Count infinite;
    Count atOneTime;
    Count overreaching;
    int wrongType = 0;
    bool wrongConvert = true;
    NarrowString wrongName; ///< of the type of the first
    std::bitset<32> types;

private:
    void Take(const KeyFrame &key)
    {
        types.set(static_cast<std::size_t>(key.Value().which()));
        if (key.Value().which() != model_.which()) {
            if (wrong.count == 0)
                wrongName = TypeName(key.Value());
            wrong.Add(key.Time());
            wrongConvert = wrongConvert && Converted(key.Value(), model_).has_value();
        }
        if (!project::IsFinite(key.Value()) || !IsFinite(key.IncomingPoint()) ||
            !IsFinite(key.OutgoingPoint()))
            infinite.Add(key.Time());
        if (hasPrevious_)
            TakePiece(key);
        hasPrevious_ = true;
        previous_ = {key.Time(), key.OutgoingPoint().X, key.Type() == KeyFrameType::Hold};
    }

    void TakePiece(const KeyFrame &key)
    {
        const std::int64_t span = std::int64_t{key.Time()} - previous_.time;
        if (span == 0) {
            atOneTime.Add(key.Time());
            return;
        }
        if (previous_.holds)
            return;
        // Handles are floats: one that was worked out may miss the end of its piece by a rounding.
        const float longest = static_cast<float>(span) * (1 + 1e-5f);
        if (previous_.outgoing < 0 || previous_.outgoing > longest)
            overreaching.Add(previous_.time);
        if (key.IncomingPoint().X > 0 || key.IncomingPoint().X < -longest)
            overreaching.Add(key.Time());
    }

    const PropertyValue &model_;
    bool hasPrevious_ = false;
    Neighbour previous_;
};

/// Gives each key frame that has no finite value that of the one before it, the first the default.
void MakeFinite(KeyFrameList &keys, PropertyValue value)
{
    keys.ForEach([&value](KeyFrame &key) {
        if (IsFinite(key.Value()))
            value = key.Value();
        else
            key.SetValue(value);
        if (!IsFinite(key.IncomingPoint()))
            key.SetIncomingPoint({});
        if (!IsFinite(key.OutgoingPoint()))
            key.SetOutgoingPoint({});
    });
}

/// One property of a manager.
class PropertyChecker
{
public:
    PropertyChecker(Findings &findings, const Place &place, const PropertyManager &properties,
                    const NarrowString &name, const PropertyValue &model, const PropertyAccess &access)
        : findings_(findings),
          place_(place),
          properties_(properties),
          name_(name),
          model_(model),
          access_(access)
    {
    }

    void Run(bool hasExpressionEngine)
    {
        // Nothing but resetting a property asks for it.
        CheckValue(Finding::Severity::Warning, "the default", properties_.DefaultValue(name_.c_str()));
        CheckStaticValue(properties_.StaticValue(name_.c_str()));
        if (const KeyFrameList &keys = properties_.KeyFrames(name_.c_str()); !keys.IsEmpty())
            CheckKeyFrames(keys);
        if (properties_.HasExpression(name_.c_str()) && !hasExpressionEngine)
            findings_.Note(FindingKind::Expression, place_,
                           "its expression is not evaluated: there is no engine for it");
    }

private:
    void CheckValue(Finding::Severity severity, const char *which, const PropertyValue &value,
                    Remedy remedy = {}, Remedy finiteRemedy = {})
    {
        if (value.which() != model_.which())
            findings_.Add(severity, FindingKind::UnexpectedType, place_,
                          NarrowString(which) + " is of type " + TypeName(value) + " in place of " +
                              TypeName(model_),
                          std::move(remedy));
        if (!project::IsFinite(value))
            findings_.Warn(FindingKind::NoNumber, place_, NarrowString(which) + " is not finite",
                           std::move(finiteRemedy));
    }

    void CheckStaticValue(const PropertyValue &value)
    {
        Remedy finite;
        if (access_ && project::IsFinite(model_))
            finite = {"takes the default", [access = access_, name = name_, model = model_](Project &) {
                          access().StaticValue(name.c_str()) = model;
                      }};
        Remedy remedy;
        if (access_ && value.which() != model_.which())
            if (const auto converted = Converted(value, model_))
                remedy = {"makes it " + TypeName(model_),
                          [access = access_, name = name_, converted](Project &) {
                              access().StaticValue(name.c_str()) = *converted;
                          }};
        CheckValue(Finding::Severity::Error, "the static value", value, std::move(remedy), std::move(finite));
    }

    void CheckKeyFrames(const KeyFrameList &keys)
    {
        const KeyFrameSummary summary(keys, model_);
        CheckTypes(summary);
        if (summary.infinite.count > 0)
            findings_.Warn(FindingKind::NoNumber, place_,
                           summary.infinite.Text("has", "have") + " a value or a handle that is not finite",
                           FiniteKeyFrames());
        if (!properties_.CanAnimate(name_.c_str()))
            findings_.Warn(FindingKind::NotAnimatable, place_,
                           "it is not to be animated and has " + Counted(keys.Count(), "key frame"));
        if (summary.atOneTime.count > 0)
            findings_.Warn(FindingKind::SameTime, place_,
                           summary.atOneTime.Text("stands", "stand") + " where there is one already");
        if (summary.overreaching.count > 0)
            findings_.Warn(FindingKind::Handle, place_,
                           summary.overreaching.Text("has", "have") +
                               " a handle that leaves its piece of the curve");
    }

    Remedy FiniteKeyFrames() const
    {
        if (!access_ || !project::IsFinite(model_))
            return {};
        return {"takes values of key frames before and drops handles",
                [access = access_, name = name_, model = model_](Project &) {
                    MakeFinite(access().KeyFrames(name.c_str()), model);
                }};
    }

    void CheckTypes(const KeyFrameSummary &summary)
    {
        if (summary.wrong.count == 0)
            return;
        Remedy remedy;
        if (access_ && summary.wrongConvert)
            remedy = {"makes them " + TypeName(model_),
                      [access = access_, name = name_, model = model_](Project &) {
                          access().KeyFrames(name.c_str()).ForEach([&](KeyFrame &key) {
                              if (const auto converted = Converted(key.Value(), model);
                                  converted && key.Value().which() != model.which())
                                  key.SetValue(*converted);
                          });
                      }};
        const bool isMixed = summary.types.count() > 1;
        findings_.Error(isMixed ? FindingKind::MixedTypes : FindingKind::UnexpectedType, place_,
                        summary.wrong.Text("is", "are") + " of type " + summary.wrongName + " in place of " +
                            TypeName(model_) +
                            (isMixed ? ", and nothing lies between key frames of several types" : ""),
                        std::move(remedy));
    }

    Findings &findings_;
    const Place &place_;
    const PropertyManager &properties_;
    const NarrowString &name_;
    const PropertyValue &model_;
    const PropertyAccess &access_;
};

} // namespace

void CheckProperties(Findings &findings, const Place &place, const PropertyManager &properties,
                     const PropertyRules &rules, const PropertyAccess &access)
{
    for (const NarrowString &name : properties.PropertyNames()) {
        const PropertyManager &known =
            rules.model && rules.model->HasProperty(name.c_str()) ? *rules.model : properties;
        PropertyChecker(findings, Place(Place::kProperty, name, &place), properties, name,
                        known.DefaultValue(name.c_str()), access)
            .Run(rules.hasExpressionEngine);
    }
}

} // namespace marlet::project
