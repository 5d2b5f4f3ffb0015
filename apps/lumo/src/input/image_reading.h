// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "input/file_listing.h"
#include "lumo/cameradata/exif_info.h"

#include <QStringList>

#include <functional>

namespace lumo::program {

/// Called for each image file whose metadata were read.
using ImageRead = std::function<void(const QString& file, const ExifInfo& exif)>;

/// Reads the metadata of the images in the arguments (files and folders), with one
/// thread per processor and a progress bar on long runs. Calls `read` in order, on the
/// calling thread. A file that cannot be read is passed to `failed`, and the run goes
/// on. Ctrl-C ends the run before the next file; that file is passed to `failed`, too.
void readImages(const QStringList& arguments, const ImageRead& read, const PathFailure& failed);

} // namespace lumo::program
