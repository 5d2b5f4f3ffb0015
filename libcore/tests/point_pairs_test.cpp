// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/point_pairs.h"

#include <QBuffer>
#include <gtest/gtest.h>

namespace lumo {
namespace {

bool read(const QByteArray& table, PointPairs& pairs, QString& error)
{
    QBuffer device;
    device.setData(table);
    return device.open(QIODevice::ReadOnly) && readPointPairs(device, pairs, error);
}

TEST(PointPairs, ColumnsMayStandInAnyOrder)
{
    const QByteArray tables[] = {
        "x1,y1,z1,x2,y2,z2,sx,sy,sz,name\n1,2,3,4,5,6,.1,.2,.3,A\n",
        "\xEF\xBB\xBF# by hand\r\n\r\nName;SZ;SY;SX;Z2;Y2;X2;Z1;Y1;X1\r\n"
        "\"A\" ; 0.3;2e-1;+0.1;6;5;4;3;2;1",
        "z1\ty1\tx1\tx2\ty2\tz2\tsx\tsy\tsz\tname\n3\t2\t1\t4\t5\t6\t0.1\t0.2\t0.3\tA\n\n"};
    for (const QByteArray& table : tables) {
        SCOPED_TRACE(table.constData());
        PointPairs pairs;
        QString error;
        ASSERT_TRUE(read(table, pairs, error)) << qPrintable(error);
        ASSERT_EQ(pairs.points1.size(), 1u);
        EXPECT_EQ(pairs.points1[0], Eigen::Vector3d(1, 2, 3));
        EXPECT_EQ(pairs.points2.at(0), Eigen::Vector3d(4, 5, 6));
        EXPECT_EQ(pairs.sigmas.at(0), Eigen::Vector3d(0.1, 0.2, 0.3));
        EXPECT_EQ(pairs.names.at(0), "A");
    }
}

TEST(PointPairs, ATableWithoutDeviationsAndNamesHasNone)
{
    PointPairs pairs;
    pairs.names = {"old"};
    QString error;
    ASSERT_TRUE(read("x1,y1,z1,x2,y2,z2\n1,2,3,4,5,6\n7,8,9,10,11,12\n", pairs, error));
    EXPECT_EQ(pairs.points2.size(), 2u);
    EXPECT_TRUE(pairs.sigmas.empty());
    EXPECT_TRUE(pairs.names.empty());
    EXPECT_TRUE(read("x1,y1,z1,x2,y2,z2\n", pairs, error)); // no pairs is for the user to judge
    EXPECT_TRUE(pairs.points1.empty());
}

TEST(PointPairs, WhatIsWrongIsSaidWithItsLine)
{
    const QByteArray header = "x1,y1,z1,x2,y2,z2\n";
    const QByteArray withSigmas = "x1,y1,z1,x2,y2,z2,sx,sy,sz\n";
    const std::pair<QByteArray, const char*> cases[] = {
        {"", "line 1: there is no header"},
        {"# nothing\n\n", "line 2: there is no header"},
        {"1,2,3,4,5,6\n", "line 1: unknown column '1'"},
        {"x1,y1,z1,x2,y2\n", "line 1: column 'z2' is missing"},
        {"x1,y1,z1,x2,y2,z2,sx,sz\n", "line 1: column 'sy' is missing"},
        {"x1,y1,z1,x2,y2,z2,X1\n", "line 1: column 'x1' is there twice"},
        {header + "1,2,3,4,5\n", "line 2: 5 cells instead of 6"},
        {header + "\n1,2,3,4,5,6,7\n", "line 3: 7 cells instead of 6"},
        {header + "1,2,3,4,5,6\n1,2,,4,5,6\n", "line 3: z1 '' is not a number"},
        {header + "1,2,3,4,5,0x6\n", "line 2: z2 '0x6' is not a number"},
        {header + "1,nan,3,4,5,6\n", "line 2: y1 'nan' is not a number"},
        {header + "1,2,3,inf,5,6\n", "line 2: x2 'inf' is not a number"},
        {header + "1,2,3,1e999,5,6\n", "line 2: x2 '1e999' is not a number"},
        {header + "1,2,3,4,-1e51,6\n", "line 2: y2 '-1e51' is too large or too small"},
        {withSigmas + "1,2,3,4,5,6,1,0,1\n", "line 2: sy '0' is not positive"},
        {withSigmas + "1,2,3,4,5,6,1,1,-1\n", "line 2: sz '-1' is not positive"},
        {header + QByteArray(70000, '1'), "line 2: is longer than 65536 bytes"}};
    for (const auto& [table, reason] : cases) {
        SCOPED_TRACE(table.left(60).constData());
        PointPairs pairs;
        pairs.names = {"kept"};
        QString error;
        EXPECT_FALSE(read(table, pairs, error));
        EXPECT_EQ(error, reason);
        EXPECT_EQ(pairs.names.size(), 1u);
    }
}

} // namespace
} // namespace lumo
