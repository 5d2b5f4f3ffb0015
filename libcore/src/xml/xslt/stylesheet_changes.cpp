// SPDX-License-Identifier: Apache-2.0
#include "xml/xslt/stylesheet_changes.h"

#include <QBuffer>
#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

namespace lumo::xml {
namespace {

using Kind = ConversionChange::Kind;

struct KindTag
{
    const char* tag;
    Kind kind;
};
constexpr std::array<KindTag, 4> kKindTags{{
    {"change:renamed", Kind::Renamed},
    {"change:moved", Kind::Moved},
    {"change:rewritten", Kind::Rewritten},
    {"change:dropped", Kind::Dropped},
}};

/// A change with `what` taken apart: the ends of a path of elements, and an attribute.
struct Sought
{
    ConversionChange change;
    QStringList path;
    QString attribute;

    explicit Sought(ConversionChange told)
        : change(std::move(told))
        , path(change.what.section(QLatin1Char('@'), 0, 0).split(QLatin1Char('/')))
        , attribute(change.what.section(QLatin1Char('@'), 1))
    {}

    [[nodiscard]] bool matches(
        const QStringList& open, const QXmlStreamAttributes& attributes) const
    {
        if (path.size() > open.size() ||
            (!attribute.isEmpty() && !attributes.hasAttribute(attribute))) {
            return false;
        }
        return std::equal(
            path.rbegin(), path.rend(), open.rbegin(), [](const auto& a, const auto& b) {
                return a.endsWith(QLatin1Char('*')) ? b.startsWith(a.chopped(1)) : a == b;
            });
    }
};

/// Calls `each` at the start of every element with the names from the root to it.
void walk(
    const QByteArray& bytes,
    const std::function<void(const QStringList&, const QXmlStreamReader&)>& each)
{
    QBuffer device;
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    reader.setNamespaceProcessing(false);
    QStringList open;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            open.push_back(reader.qualifiedName().toString());
            each(open, reader);
        } else if (reader.isEndElement()) {
            open.pop_back();
        }
    }
}

std::vector<Sought> toldBy(const QByteArray& stylesheet)
{
    std::vector<Sought> told;
    walk(stylesheet, [&](const QStringList& open, const QXmlStreamReader& reader) {
        for (const KindTag& kind : kKindTags) {
            if (open.size() == 2 && open.back() == QLatin1String(kind.tag)) {
                const QXmlStreamAttributes attributes = reader.attributes();
                told.emplace_back(ConversionChange{
                    kind.kind, attributes.value(QLatin1String("what")).toString(),
                    attributes.value(QLatin1String("into")).toString(), 0, 0});
            }
        }
    });
    return told;
}

} // namespace

std::vector<ConversionChange> stylesheetChanges(
    const QByteArray& stylesheet, const QByteArray& document)
{
    std::vector<Sought> told = toldBy(stylesheet);
    walk(document, [&](const QStringList& open, const QXmlStreamReader& reader) {
        for (Sought& sought : told) {
            if (sought.matches(open, reader.attributes()) && sought.change.count++ == 0) {
                sought.change.line = static_cast<int>(reader.lineNumber());
            }
        }
    });
    std::vector<ConversionChange> changes;
    for (const Sought& sought : told) {
        if (sought.change.count > 0) {
            changes.push_back(sought.change);
        }
    }
    return changes;
}

} // namespace lumo::xml
