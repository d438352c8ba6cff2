#include "DocumentElement.h"

#include "Failure.h"

#include <QXmlStreamReader>

#include <algorithm>

namespace marlet::tool
{

namespace
{

DocumentElement ReadElement(QXmlStreamReader &reader)
{
    DocumentElement element;
    element.tag = reader.name().toString().toStdString();
    for (const QXmlStreamAttribute &attribute : reader.attributes())
        element.attributes.emplace_back(attribute.name().toString().toStdString(),
                                        attribute.value().toString().toStdString());
    QString text;
    while (reader.readNext() != QXmlStreamReader::EndElement && !reader.hasError()) {
        if (reader.isStartElement())
            element.children.push_back(ReadElement(reader));
        else if (reader.isCharacters())
            text += reader.text();
    }
    if (element.children.empty())
        element.text = text.toStdString();
    return element;
}

} // namespace

std::string DocumentElement::Attribute(const std::string &name) const
{
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const auto &attribute) { return attribute.first == name; });
    return found == attributes.end() ? std::string() : found->second;
}

const DocumentElement *DocumentElement::Child(const std::string &childTag) const
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const DocumentElement &child) { return child.tag == childTag; });
    return found == children.end() ? nullptr : &*found;
}

std::string DocumentElement::ChildText(const std::string &childTag) const
{
    const DocumentElement *child = Child(childTag);
    return child ? child->text : std::string();
}

DocumentElement ParseDocument(const project::WideString &xml)
{
    QXmlStreamReader reader(QString::fromStdU16String(xml));
    if (!reader.readNextStartElement())
        throw Failure(reader.errorString().toStdString());
    DocumentElement root = ReadElement(reader);
    if (reader.hasError())
        throw Failure(reader.errorString().toStdString());
    return root;
}

} // namespace marlet::tool
