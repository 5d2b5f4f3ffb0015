// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/exif_info.h"
#include "lumo/cameradata/input_image.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

struct IdCase
{
    const char* make;
    const char* model;
    const char* lens;
    double focal;
    std::size_t width;
    std::size_t height;
    const char* first;
    const char* second;
};

TEST(ExifId, IsMadeOfModelLensFocalLengthAndSize)
{
    const IdCase cases[] = {
        {"DJI", "FC6310", "", 8.8, 5472, 3648, "FC6310_8.8_5472x3648", "FC6310_8.8_5472x3648"},
        {"DJI", "FC6310", "", 8.8, 3648, 5472, "FC6310_8.8_5472x3648", "FC6310_8.8_5472x3648"},
        {"Apple", "iPhone 6", "back 4.15mm f/2.2", 4.15, 3264, 2448,
         "iPhone 6_back 4.15mm f-2.2_4.2_3264x2448", "iPhone 6_4.2_3264x2448"},
        {"PENTAX", "PENTAX *ist_D", "", 0, 10, 20, "PENTAX -ist-D_0.0_20x10",
         "PENTAX -ist-D_0.0_20x10"},
        {"FLIR", "  ", "", 1, 640, 512, "FLIR_1.0_640x512", "FLIR_1.0_640x512"},
        {"", "", "lens", 1, 640, 512, "", ""},
    };
    for (const IdCase& test : cases) {
        ExifInfo exif;
        exif.make = test.make;
        exif.model = test.model;
        exif.lensModel = test.lens;
        exif.focalLengthMm = test.focal;
        exif.imageWidth = test.width;
        exif.imageHeight = test.height;
        EXPECT_EQ(exif.exifId(), (ExifID{test.first, test.second})) << test.model;
    }
}

TEST(ExifId, IsSplitFromTheRight)
{
    const std::pair<const char*, QStringList> cases[] = {
        {"FC6310_8.8_5472x3648", {"FC6310", "8", "8", "5472", "3648"}},
        {"a_b c_10.0_3x2", {"a_b c", "10", "0", "3", "2"}},
        {"a_8_3x2", {"a", "8", "3x2"}},
        {"_8.8_3x2", {"", "8.8", "3x2"}},
        {"plain", {"plain"}},
        {"", {""}},
    };
    for (const auto& [text, tokens] : cases) {
        EXPECT_EQ(tokenizeExifId(text), tokens) << text;
    }
}

TEST(InputImage, SpectralKindFollowsTheBands)
{
    ExifInfo exif;
    EXPECT_EQ(InputImage("a.jpg", exif).spectralKind(), SpectralKind::Rgb);
    exif.bands = band::makeRGBBands();
    EXPECT_EQ(InputImage("a.jpg", exif).spectralKind(), SpectralKind::Rgb);
    exif.bands = {{"NIR", 790, 40, 1}};
    EXPECT_EQ(InputImage("a.tif", exif).spectralKind(), SpectralKind::Multispectral);
}

} // namespace
} // namespace lumo
