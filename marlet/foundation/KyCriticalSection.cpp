#include <marlet/foundation/KyCriticalSection.h>

namespace kytl::thread
{

KyLockTypeBase::~KyLockTypeBase() = default;

KyCriticalSection::~KyCriticalSection() = default;

} // namespace kytl::thread
