#pragma once

#include <type_traits>

namespace marlet::project
{

namespace host_operations
{

template <class Interface> class Three : public Interface
{
public:
    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
};

template <class Interface> class Seven : public Three<Interface>
{
public:
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}
};

template <class Interface> class Eight : public Seven<Interface>
{
public:
    void HostOperation8() override {}
};

template <class Interface> class Ten : public Eight<Interface>
{
public:
    void HostOperation9() override {}
    void HostOperation10() override {}
};

template <class Interface>
concept HasSeven = requires(Interface &host)
{
    host.HostOperation7();
};
template <class Interface>
concept HasEight = requires(Interface &host)
{
    host.HostOperation8();
};
template <class Interface>
concept HasTen = requires(Interface &host)
{
    host.HostOperation10();
};

} // namespace host_operations

/// An interface of this library with empty bodies for its numbered operations, which are places for what a
/// host asks of its own objects and which the library never calls: a host that has no use for them derives
/// from this, and is left with what the library asks for. Any interface with such operations may be named:
/// AbstractPlugin, AbstractPlugin2D, AbstractPluginManager, AbstractExpressionEngine, Abstract3DEffect.
template <class Interface>
using WithoutHostOperations = std::conditional_t<
    host_operations::HasTen<Interface>, host_operations::Ten<Interface>,
    std::conditional_t<
        host_operations::HasEight<Interface>, host_operations::Eight<Interface>,
        std::conditional_t<host_operations::HasSeven<Interface>, host_operations::Seven<Interface>,
                           host_operations::Three<Interface>>>>;

} // namespace marlet::project
