#pragma once

#include <marlet/foundation/Relaxed.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

namespace marlet::project
{

// Children whose values other threads may read meanwhile, for descriptions that run in both directions.

template <class T> void Child(XmlWriter &writer, const char *name, const Relaxed<T> &value)
{
    writer.Child(name, value.Load());
}

template <class T> void Child(const XmlCursor &element, const char *name, Relaxed<T> &value)
{
    T read{};
    element.Child(name, read);
    value.Store(read);
}

} // namespace marlet::project
