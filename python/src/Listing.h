#pragma once

#include "Common.h"

#include <functional>
#include <memory>
#include <vector>

namespace marlet::python
{

/// A list of a project as a sequence that always shows what is there, and finds by name as well.
class Listing
{
public:
    class Source
    {
    public:
        Source() = default;
        Source(const Source &) = delete;
        Source &operator=(const Source &) = delete;
        virtual ~Source() = default;

        virtual std::size_t Count() const = 0;
        virtual py::object At(std::size_t index) const = 0;
        virtual py::list All() const = 0;
        /// The first of that name or ID, or null.
        virtual py::object Find(const WideString &name) const = 0;
    };

    explicit Listing(std::shared_ptr<const Source> source) : source_(std::move(source)) {}

    const Source &Get() const { return *source_; }

private:
    std::shared_ptr<const Source> source_;
};

template <class T> class ListingSource : public Listing::Source
{
public:
    using Objects = std::vector<std::shared_ptr<T>>;

    ListingSource(std::function<Objects()> read, std::function<py::object(const std::shared_ptr<T> &)> show)
        : read_(std::move(read)), show_(std::move(show))
    {
    }

    std::size_t Count() const override { return Read().size(); }
    py::object At(std::size_t index) const override { return show_(Read().at(index)); }

    py::list All() const override
    {
        py::list shown;
        for (const std::shared_ptr<T> &object : Read())
            shown.append(show_(object));
        return shown;
    }

    py::object Find(const WideString &name) const override
    {
        const Objects objects = Read();
        if constexpr (requires(const T &object) { object.Name(); }) {
            for (const std::shared_ptr<T> &object : objects)
                if (object->Name() == name)
                    return show_(object);
        }
        for (const std::shared_ptr<T> &object : objects)
            if (object->ID().ToWideString() == name)
                return show_(object);
        return {};
    }

private:
    Objects Read() const
    {
        Objects objects = read_();
        std::erase(objects, nullptr);
        return objects;
    }

    std::function<Objects()> read_;
    std::function<py::object(const std::shared_ptr<T> &)> show_;
};

/// @param read returns what is there, in order
/// @param show makes a handle of one
template <class T, class Read, class Show> Listing MakeListing(Read read, Show show)
{
    return Listing(std::make_shared<ListingSource<T>>(
        [read = std::move(read)] {
            const auto &list = read();
            return std::vector<std::shared_ptr<T>>(list.begin(), list.end());
        },
        std::move(show)));
}

} // namespace marlet::python
