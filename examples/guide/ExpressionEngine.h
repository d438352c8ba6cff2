#pragma once

#include <marlet/animation/AbstractExpressionEngine.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <cstdlib>

namespace guide
{

using namespace marlet::project;

// Its language has one word: a factor for what the key frames say.
class ExpressionEngine : public WithoutHostOperations<AbstractExpressionEngine>
{
public:
    float ShownValue(const PropertyManager &properties, const char *name, int time) const
    {
        const float value = boost::get<float>(properties.ValueAtTime(name, time));
        if (!properties.HasExpression(name))
            return value;
        return value * std::strtof(properties.Expression(name).c_str(), nullptr);
    }
};

} // namespace guide
