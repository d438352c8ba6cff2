#include <marlet/history/SameValue.h>

#include <marlet/animation/PropertyValueTraits.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <cstring>

namespace marlet::project
{

namespace
{

template <class T> bool HaveSameBits(const T &a, const T &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

struct SameToTheBit : boost::static_visitor<bool> {
    template <class T, class U> bool operator()(const T &, const U &) const { return false; }

    template <class T> bool operator()(const T &a, const T &b) const
    {
        if constexpr (requires { ValueTraits<T>::kFields; }) {
            for (const auto &field : ValueTraits<T>::kFields)
                if (!HaveSameBits(a.*field.member, b.*field.member))
                    return false;
            return true;
        } else {
            return HaveSameBits(a, b);
        }
    }
};

bool AreSame(const kytl::matl::KyVector<2, float> &a, const kytl::matl::KyVector<2, float> &b)
{
    return SameToTheBit()(a, b);
}

} // namespace

bool AreSameToTheBit(const PropertyValue &a, const PropertyValue &b)
{
    return boost::apply_visitor(SameToTheBit(), a, b);
}

bool AreSameToTheBit(const KeyFrame &a, const KeyFrame &b)
{
    return a.ID() == b.ID() && a.Time() == b.Time() && a.Type() == b.Type() &&
           AreSame(a.IncomingPoint(), b.IncomingPoint()) && AreSame(a.OutgoingPoint(), b.OutgoingPoint()) &&
           AreSameToTheBit(a.Value(), b.Value());
}

} // namespace marlet::project
