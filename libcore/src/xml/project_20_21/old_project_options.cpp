// SPDX-License-Identifier: Apache-2.0
#include "xml/project_20_21/old_project_options.h"

#include "xml/project_20_21/old_project_changes.h"
#include "xml/project_20_21/old_project_renames.h"

#include <QHash>
#include <QXmlStreamWriter>

namespace lumo::kpx {
namespace {

QString currentName(const QString& option)
{
    static const QHash<QString, QString> names = [] {
        QHash<QString, QString> table;
        for (const OptionRename& rename : kOptionRenames) {
            table.insert(rename.before, rename.after);
        }
        return table;
    }();
    return names.value(option, option);
}

} // namespace

OptionSections::OptionSections(const XsdTypeElementIndex& index)
    : m_positions{
          index.initialOptionsElements(), index.denseOptionsElements(),
          index.orthoOptionsElements(), index.indexOptionsElements()}
{}

bool OptionSections::place(Element element, Changes& changes)
{
    const QString before = element.name;
    element.name = currentName(before);
    return placeRenamed(before, std::move(element), changes);
}

bool OptionSections::placeRenamed(const QString& before, Element element, Changes& changes)
{
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        const auto listed = m_positions[i].find(element.name);
        if (listed == m_positions[i].end()) {
            continue;
        }
        const auto [placed, isFirst] = m_placed.try_emplace(element.name, before);
        if (!isFirst) {
            changes.dropped(
                before, QStringLiteral("%1 is set by %2 before").arg(element.name, placed->second),
                element.line);
            return false;
        }
        const QString into =
            QStringLiteral("options/%1/%2").arg(QLatin1String(kNames[i]), element.name);
        before == element.name ? changes.moved(before, into, element.line)
                               : changes.renamed(before, into, element.line);
        m_sections[i].emplace(listed->second, std::move(element));
        return true;
    }
    changes.dropped(before, QStringLiteral("no such option is known"), element.line);
    return false;
}

bool OptionSections::has(const QString& name) const
{
    return m_placed.count(name) != 0;
}

void OptionSections::write(QXmlStreamWriter& writer) const
{
    writer.writeStartElement(QStringLiteral("options"));
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        writer.writeStartElement(QLatin1String(kNames[i]));
        for (const auto& [position, element] : m_sections[i]) {
            writeElement(writer, element);
        }
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

} // namespace lumo::kpx
