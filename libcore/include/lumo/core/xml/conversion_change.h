// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo {

/// One thing that a conversion step did to a document.
struct ConversionChange
{
    /// What was done.
    enum class Kind {
        Renamed,   ///< an element or attribute has another name
        Moved,     ///< an element stands elsewhere, under the same name
        Rewritten, ///< a value has another form, or something was added
        Dropped,   ///< something is not in the result
    };
    Kind kind = Kind::Renamed;
    /// In the old document, as far as is needed to tell: "element",
    /// "parent/element" or "element@attribute". A name may end in "*".
    QString what;
    QString into;  ///< in the new document likewise; for Dropped the reason
    int line = 0;  ///< of the first occurrence in the step's input, from 1
    int count = 1; ///< occurrences
};

} // namespace lumo
