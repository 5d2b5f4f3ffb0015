// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QXmlStreamReader>

#include <functional>
#include <optional>
#include <vector>

class QDomDocument;
class QDomElement;
class QXmlStreamWriter;

namespace lumo::kpx {

class Changes;

struct Attribute
{
    QString name;
    QString value;
};

/// An element with its content. The converter reads a document element by element, so
/// that memory never contains the whole document. Names are not split at colons.
struct Element
{
    QString name;
    QString text = {}; ///< empty where there are children
    std::vector<Attribute> attributes = {};
    std::vector<Element> children = {};
    int line = 0; ///< where its start tag ends, from 1

    /// Null if there is no such attribute.
    [[nodiscard]] const QString* attribute(const QString& attributeName) const;
    /// The element's value: the attribute "value", which most simple elements use, or
    /// else the text.
    [[nodiscard]] QString value() const;
    void setAttribute(const QString& attributeName, const QString& value);
    /// Removes an attribute and returns its value; nothing if there is none.
    [[nodiscard]] std::optional<QString> takeAttribute(const QString& attributeName);
};

[[nodiscard]] int lineOf(const QXmlStreamReader& reader);

/// Reads the element that starts at the reader's position. Leaves out white space
/// between elements. Also leaves out comments, processing instructions and text beside
/// elements, and reports these to `changes`.
/// \throws std::runtime_error if a tag in the element is too old to be converted, or
///     if the element does not end
[[nodiscard]] Element readElement(QXmlStreamReader& reader, Changes& changes);

/// The root's start tag, without what is in the root.
/// \param bytes  must have passed xml::checkXml
[[nodiscard]] Element rootOf(const QByteArray& bytes);

/// Reports the comment or processing instruction at the reader's position as dropped.
void dropComment(const QXmlStreamReader& reader, Changes& changes);

/// Calls `each` with the reader at the start of every element directly below the
/// root. `each` must read to the end of the element, and returns whether to continue.
/// \param changes  receives comments and texts outside of these elements; may be null
/// \throws std::runtime_error if the document is not XML; passes on exceptions of
///     `each`
void walkElements(
    const QByteArray& bytes, Changes* changes, const std::function<bool(QXmlStreamReader&)>& each);

void writeElement(QXmlStreamWriter& writer, const Element& element);

[[nodiscard]] QDomElement toDom(QDomDocument& document, const Element& element);

} // namespace lumo::kpx
