#pragma once

#include <pybind11/numpy.h>

#include <cstddef>
#include <memory>

namespace marlet::python
{

/// Bytes that frames are decoded into. Those of arrays that are gone are used again, up to 64 MB of them: a
/// new buffer of that size costs more than writing into one that is there. Any thread.
class FrameBuffer
{
public:
    explicit FrameBuffer(std::size_t size);
    FrameBuffer(const FrameBuffer &) = delete;
    FrameBuffer &operator=(const FrameBuffer &) = delete;
    ~FrameBuffer();

    unsigned char *Data() const { return bytes_.get(); }
    std::size_t Size() const { return size_; }

private:
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t size_;
};

/// Keeps an owner for as long as an array shows what it owns.
template <class Owner> pybind11::capsule Keeping(std::unique_ptr<Owner> owner)
{
    return pybind11::capsule(owner.release(), [](void *kept) { delete static_cast<Owner *>(kept); });
}

} // namespace marlet::python
