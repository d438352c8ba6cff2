#include "Listener.h"

#include <utility>

namespace editor
{

namespace
{

struct Observer : ChangeObserver {
    explicit Observer(Listener::Function toCall) : function(std::move(toCall)) {}
    void Changed(const ChangeNotice &notice) override { function(notice); }

    Listener::Function function;
};

} // namespace

Listener::Listener(EditHistory &history, Function function)
    : history_(history), observer_(std::make_shared<Observer>(std::move(function)))
{
    history_.AddObserver(observer_);
}

Listener::~Listener()
{
    history_.RemoveObserver(observer_);
}

} // namespace editor
