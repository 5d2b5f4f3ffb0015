// SPDX-License-Identifier: Apache-2.0
#include "xml/validation/schema_versions.h"

#include "lumo/foundation/file.h"
#include "lumo/foundation/system.h"

#include <QDir>

#include <algorithm>

namespace lumo::xml {

QString schemasFolder()
{
    return file::join(system::applicationDirectory(), QStringLiteral("resources/xsd"));
}

std::vector<int> schemaVersions()
{
    std::vector<int> versions;
    for (const QString& name : QDir(schemasFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        versions.push_back(name.toInt());
    }
    std::sort(versions.begin(), versions.end());
    return versions;
}

} // namespace lumo::xml
