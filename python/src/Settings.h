#pragma once

#include "Document.h"

#include <marlet/foundation/AudioVideoSettings.h>

#include <functional>

namespace marlet::python
{

/// The format of an object that has one.
struct SettingsHandle {
    std::function<AudioVideoSettings()> read;
    /// Runs a change of the format as an edit.
    std::function<void(const std::function<void(AudioVideoSettings &)> &)> change;

    AudioVideoSettings Read() const { return read(); }
    void Change(const std::function<void(AudioVideoSettings &)> &function) const { change(function); }
};

template <class Handle> SettingsHandle SettingsOf(const Handle &handle)
{
    handle.Get();
    return {[handle] { return std::as_const(*handle.Get()).Settings(); },
            [handle](const std::function<void(AudioVideoSettings &)> &function) {
                const auto object = handle.Get();
                Edited(*handle.Owner(), u"Change format", [&](Edit &edit) {
                    edit.Touch(object);
                    function(object->Settings());
                });
            }};
}

/// A preset by its name, with what is not 0 in its place. @throws py::value_error
AudioVideoSettings SettingsOf(double rate, int width, int height, int frames, const std::string &preset);

} // namespace marlet::python
