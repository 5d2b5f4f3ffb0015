// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_db_data.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace lumo::cameradb {

/// Random databases of valid records, with all that their forms in files can hold.
class RandomData
{
public:
    explicit RandomData(std::uint32_t seed)
        : m_rng(seed)
    {}

    CameraDBData next()
    {
        CameraDBData data;
        for (int i = index(4); i >= 0; --i) {
            const CameraModelFromDB model = camera(QStringLiteral("%1 %2").arg(text()).arg(i));
            data.cameras.emplace(model.params.name, model);
            CameraModelFromDB body = camera(model.params.name);
            body.serialNumber = QStringLiteral("S\"%1\n,%2").arg(i).arg(text());
            data.cameras.emplace(body.params.name, body);
        }
        for (int i = index(3); i > 0; --i) {
            data.mappings.emplace(text() + QString::number(i), text() + QLatin1Char('x'));
            const RigModel rig = this->rig(text() + QString::number(i));
            data.rigs.emplace(rig.name, rig);
        }
        return data;
    }

private:
    int index(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_rng); }
    std::size_t position(int count) { return static_cast<std::size_t>(index(count)); }
    bool flip() { return index(2) == 1; }

    /// Zero now and then, else of any magnitude that a parameter may have.
    double number()
    {
        const double mantissa = std::uniform_real_distribution<double>(-10.0, 10.0)(m_rng);
        return index(4) == 0 ? 0.0 : mantissa * std::pow(10.0, index(9) - 5);
    }
    double positive() { return std::abs(number()) + 1e-4; }

    /// What a name may hold and a table or a spreadsheet may stumble over.
    QString text()
    {
        static const QStringList texts{
            "#5",
            "[cameras]",
            "FC6310",
            "a,b",
            "a;b",
            " blanks ",
            "Größe 3×2 度",
            "=SUM(A1)",
            "1e5",
            QString::fromUtf8("\U0001F4F7"),
            "-",
            "[end]",
            "line, \t.",
            "lumo camera database"};
        QString result = texts[index(texts.size())];
        return result.remove(QLatin1Char('\t'));
    }

    bands_t bands()
    {
        bands_t result;
        for (int i = 0; i <= index(3); ++i) {
            result.append(
                {QStringLiteral("%1 \"%2\"").arg(text()).arg(i), std::abs(number()),
                 std::abs(number()), std::abs(number())});
        }
        return result;
    }

    void fillLens(CameraParams& params)
    {
        params.lensType = static_cast<LensType>(index(3));
        if (params.lensType == LensType::Perspective) {
            params.perspective = {positive(), 2 * index(4), number(), number(),
                                  number(),   number(),     number()};
        } else if (params.lensType == LensType::Fisheye) {
            params.fisheye.npoly = 1 + index(4);
            params.fisheye.poly = {number(), number(), number(), number(), number()};
            params.fisheye.setP0zero(flip());
            params.fisheye.setAffine(flip(), positive(), 0.0, number(), positive());
        }
    }

    void fillTables(CameraParams& params)
    {
        for (int i = index(3); i > 0; --i) {
            const int rows = 1 + index(3);
            const Eigen::MatrixXd terms = Eigen::MatrixXd::NullaryExpr(
                rows, 1 + index(3), [this](Eigen::Index, Eigen::Index) { return number(); });
            params.vignetting[140 * i + index(5)] =
                VignettingData(terms, 0.0, 0.0, VignettingType::Polynomial);
        }
        for (int i = index(3); i > 0; --i) {
            const double low = number();
            params.pixelValues[static_cast<DataType>(1 + index(7))] = {low, low + positive()};
        }
    }

    CameraModelFromDB camera(const QString& name)
    {
        CameraModelFromDB model;
        CameraParams& params = model.params;
        params.name = name;
        params.setImageSize(1 + position(20000), 1 + position(20000));
        params.pixelSize = positive();
        params.principalPointXMm = number();
        params.principalPointYMm = number();
        params.shutterModel = index(5);
        params.lineReadoutTime = number();
        params.velocityNumber = number();
        params.source = static_cast<CameraSource>(index(5));
        fillLens(params);
        fillTables(params);
        if (flip()) {
            model.bandConfigs = {bands(), bands(), band::makeRGBBands()};
            model.defaultBandConfig = position(3);
        }
        model.exifId = flip() ? text() : QString();
        return model;
    }

    RigModelCameraAttr rigCamera()
    {
        RigModelCameraAttr camera(text(), flip() ? bands() : bands_t(), text());
        camera[RigKey::SerialNumber] = flip() ? text() : QString();
        camera[RigKey::DetectionString] = flip() ? text() : QString();
        return camera;
    }

    RigModel rig(const QString& name)
    {
        RigModel rig(name, static_cast<RigCameraDetection>(index(2)));
        rig.processingMode = static_cast<RigSecondaryProcType>(index(5));
        rig.adjustRefCamera = flip() ? 1 : 0;
        rig.refCamera = rigCamera();
        for (int i = 0; i < 2 + index(3); ++i) {
            const Eigen::Vector3d length(number(), number(), number());
            rig.secondaries.push_back(
                {rigCamera(), rig_relatives_t(
                                  number(), number(), number(), length, number(), number(),
                                  number(), 2.0 * length)});
        }
        rig.secondaries.back().attributes.filter().enabled = flip();
        rig.refCameraIndex = static_cast<std::uint64_t>(index(2));
        return rig;
    }

    std::mt19937 m_rng;
};

/// At the precision of files.
inline void expectEqual(const CameraDBData& a, const CameraDBData& b)
{
    EXPECT_EQ(a.mappings, b.mappings);
    ASSERT_EQ(a.cameras.size(), b.cameras.size());
    for (auto x = a.cameras.begin(), y = b.cameras.begin(); x != a.cameras.end(); ++x, ++y) {
        EXPECT_EQ(x->first, y->first);
        EXPECT_EQ(x->second.serialNumber, y->second.serialNumber);
        EXPECT_EQ(x->second.params.source, y->second.params.source);
        EXPECT_TRUE(x->second.equal(y->second)) << qPrintable(x->first);
        EXPECT_TRUE(x->second.params.equal(y->second.params, true)) << qPrintable(x->first);
    }
    ASSERT_EQ(a.rigs.size(), b.rigs.size());
    for (auto x = a.rigs.begin(), y = b.rigs.begin(); x != a.rigs.end(); ++x, ++y) {
        EXPECT_EQ(x->first, y->first);
        EXPECT_TRUE(x->second.equal(y->second)) << qPrintable(x->first);
    }
}

} // namespace lumo::cameradb
