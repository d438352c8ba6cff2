#pragma once

#include <memory>

namespace marlet::project
{

class PropertyManager;
enum class LayerType : int;
enum class ObjectType : int;

/// The properties of each class as its makers make them, which tell the types. Each is made on first use.
class PropertyModels
{
public:
    PropertyModels();
    PropertyModels(const PropertyModels &) = delete;
    PropertyModels &operator=(const PropertyModels &) = delete;
    ~PropertyModels();

    /// Null for a type of no class.
    const PropertyManager *OfLayer(LayerType type);
    const PropertyManager *OfObject(ObjectType type);
    const PropertyManager *OfMask();
    const PropertyManager *OfPathPoint();
    const PropertyManager *OfTrackingPoint();

private:
    struct Made;

    std::unique_ptr<Made> made_;
};

} // namespace marlet::project
