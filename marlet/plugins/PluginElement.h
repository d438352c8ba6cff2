#pragma once

#include <QDomDocument>

#include <vector>

namespace marlet::project
{

class AbstractPlugin;
class AbstractPluginInstance;
class LoadContext;
class XmlCursor;
class XmlWriter;
struct PluginInstance_Impl;

/// What a plug-in has to say of an instance: the element that it is handed with all that the library writes
/// there, and what it added to that.
class PluginElement
{
public:
    PluginElement(const PluginInstance_Impl &data, AbstractPlugin &plugin, AbstractPluginInstance *instance);

    /// The private data that it saves; null without.
    QDomElement Bytes() const;
    void WriteAttributes(XmlWriter &writer) const;
    /// Whether the plug-in put something into what the library wrote.
    bool IsOwnAddedTo() const;
    void WriteOwn(XmlWriter &writer) const;
    /// What the plug-in put beside what the library wrote. It is read by its name, which may be the same, so
    /// it has to stand behind that, wherever the plug-in put it.
    void WriteAdded(XmlWriter &writer) const;
    /// Takes for known what the plug-in itself writes into an element again.
    void MarkAdded(LoadContext &context, const XmlCursor &element) const;

private:
    struct Own {
        QDomNode node;
        int size;
    };

    bool IsAdded(const QString &tag) const;

    QDomDocument document_;
    QDomElement element_;
    std::vector<Own> own_;
};

} // namespace marlet::project
