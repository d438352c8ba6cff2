#pragma once

#include <tests/support/Ball.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gtest/gtest.h>

namespace marlet::test
{

/// The layer as a stand-alone text.
inline std::string TextOf(const AbstractLayer &layer)
{
    const ProjectTextureImageCache textures;
    return ToUtf8(layer.Serialize(textures));
}

/// A layer of any class, by a host that has balls.
inline std::shared_ptr<AbstractLayer>
ReadLayer(const std::string &text, const std::shared_ptr<AbstractPluginManager> &plugins = nullptr)
{
    ProjectTextureImageCache textures;
    return AbstractLayer::CreateFromXml(FromUtf8(text), plugins, BallFactory(), textures);
}

inline std::string Replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

/// The text without the first element of that name: it gets another name.
inline std::string Without(const std::string &text, const std::string &name)
{
    const std::size_t end = text.find("<" + name + " ") == std::string::npos ? 0 : 1;
    return Replaced(Replaced(text, "<" + name + (end ? " " : ">"), "<other" + std::string(end ? " " : ">")),
                    "</" + name + ">", "</other>");
}

/// What the reading of a layer fails with, in short.
inline std::string FailureOf(const std::string &text)
{
    try {
        ReadLayer(text);
    } catch (const XmlParseException &failure) {
        return failure.what();
    } catch (const InvalidProjectVersionException &) {
        return "version";
    } catch (const ProjectException &failure) {
        return std::to_string(failure.Code()) + " " + failure.Detail();
    } catch (const boost::bad_lexical_cast &) {
        return "boolean";
    } catch (const std::runtime_error &failure) {
        return failure.what();
    }
    return "none";
}

} // namespace marlet::test
