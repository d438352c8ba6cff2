#include <marlet/animation/AbstractExpressionEngine.h>

namespace marlet::project
{

AbstractExpressionEngine::~AbstractExpressionEngine() = default;

} // namespace marlet::project
