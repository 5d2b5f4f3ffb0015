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

/// An element with all that is in it: a small part of a document, so that a whole
/// one need not be held. Names are not split at colons.
struct Element
{
    QString name;
    QString text = {}; ///< empty where there are children
    std::vector<Attribute> attributes = {};
    std::vector<Element> children = {};
    int line = 0; ///< where its start tag ends, from 1

    /// Null if there is no such attribute.
    [[nodiscard]] const QString* attribute(const QString& attributeName) const;
    /// The attribute "value", in which simple elements mostly have what they say,
    /// or else the text.
    [[nodiscard]] QString value() const;
    void setAttribute(const QString& attributeName, const QString& value);
    /// Takes an attribute away; nothing if there is no such attribute.
    [[nodiscard]] std::optional<QString> takeAttribute(const QString& attributeName);
};

[[nodiscard]] int lineOf(const QXmlStreamReader& reader);

/// Takes the element that starts at the reader's position. White space between
/// elements is left out; comments, processing instructions, and text beside
/// elements are too, and are told to `changes`.
/// \throws std::runtime_error if one of the tags in it is too old to be converted,
///     or if it does not end
[[nodiscard]] Element readElement(QXmlStreamReader& reader, Changes& changes);

/// The root's start tag, without what is in the root.
/// \param bytes  must have passed xml::checkXml
[[nodiscard]] Element rootOf(const QByteArray& bytes);

/// Tells of the comment or processing instruction at the reader's position.
void dropComment(const QXmlStreamReader& reader, Changes& changes);

/// Calls `each` with the reader at the start of every element directly below the
/// root; `each` has to read on to the end of it, and says whether to go on.
/// \param changes  told of comments and texts outside of these elements; may be null
/// \throws std::runtime_error what `each` throws, or if the document is no XML
void walkElements(
    const QByteArray& bytes, Changes* changes, const std::function<bool(QXmlStreamReader&)>& each);

void writeElement(QXmlStreamWriter& writer, const Element& element);

[[nodiscard]] QDomElement toDom(QDomDocument& document, const Element& element);

} // namespace lumo::kpx
