// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "input/file_listing.h"
#include "lumo/cameradata/exif_info.h"

#include <QStringList>

#include <functional>

namespace lumo::program {

/// Called for each image file whose metadata were read.
using ImageRead = std::function<void(const QString& file, const ExifInfo& exif)>;

/// Reads the metadata of the images that the arguments stand for, by as many threads
/// as there are processors, and hands them on in order, in this thread, with a progress
/// bar on long runs. A file that cannot be read is handed to `failed`
/// and the rest goes on; Ctrl-C ends the run before the next file, which is said
/// the same way.
void readImages(const QStringList& arguments, const ImageRead& read, const PathFailure& failed);

} // namespace lumo::program
