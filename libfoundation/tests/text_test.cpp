// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/text.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <thread>

namespace lumo::text {

namespace {

template <typename T>
struct NumberCase
{
    const char* text;
    bool ok;
    T value;
};

template <typename T, std::size_t N>
void expectNumbers(const NumberCase<T> (&cases)[N])
{
    for (const auto& [text, good, value] : cases) {
        SCOPED_TRACE(text);
        bool ok = !good;
        const T parsed = fromString<T>(QString::fromUtf8(text), &ok);
        EXPECT_EQ(ok, good);
        EXPECT_EQ(parsed, value);
    }
}

} // namespace

TEST(TextFromString, IntegersAreWholeTextsInRange)
{
    expectNumbers<int>(
        {{" 17\n", true, 17},
         {"-2147483648", true, std::numeric_limits<int>::min()},
         {"+5", true, 5}});
    // the last is an Arabic digit three
    for (const char* bad :
         {"2147483648", "1,000", "1.0", "17a", "0x10", "+-5", "++5", "", " ", "\xd9\xa3"}) {
        expectNumbers<int>({{bad, false, 0}});
    }
    expectNumbers<unsigned>({{"4294967295", true, 4294967295U}, {"-1", false, 0U}});
    expectNumbers<std::size_t>(
        {{"18446744073709551615", true, std::numeric_limits<std::size_t>::max()}});
    expectNumbers<long long>(
        {{"-9223372036854775808", true, std::numeric_limits<long long>::min()},
         {"9223372036854775808", false, 0}});
    const QString cutByZero = QStringLiteral("17") + QChar(u'\0');
    bool ok = true;
    EXPECT_EQ(fromString<int>(cutByZero, &ok), 0);
    EXPECT_FALSE(ok);
}

TEST(TextFromString, RealNumbersAreFiniteAndInTheCLocale)
{
    QLocale::setDefault(QLocale(QLocale::German));
    expectNumbers<double>({{"0.1", true, 0.1}, {"-1.5e-3", true, -0.0015}, {"+.5", true, 0.5}});
    for (const char* bad :
         {"1e400", "1e-400", "1,5", "1.000,5", "nan", "inf", "-Infinity", "1e", "1.5 2"}) {
        expectNumbers<double>({{bad, false, 0.0}});
    }
    expectNumbers<float>({{"0.1", true, 0.1F}, {"1e39", false, 0.0F}});
    QLocale::setDefault(QLocale::system());
}

TEST(TextFromString, TruthIsOneOfFourTexts)
{
    expectNumbers<bool>(
        {{"true", true, true},
         {" 1 ", true, true},
         {"false", true, false},
         {"0", true, false},
         {"True", false, false},
         {"2", false, false},
         {"", false, false}});
}

TEST(TextIequals, FoldsCaseBeyondAsciiAndInNoLocale)
{
    EXPECT_TRUE(iequals(QStringLiteral("ÄBC"), QStringLiteral("äbc")));
    EXPECT_FALSE(iequals(QStringLiteral("abc"), QStringLiteral("abcd")));
    QLocale::setDefault(QLocale(QLocale::Turkish));
    EXPECT_TRUE(iequals(QStringLiteral("INDEX"), QStringLiteral("index")));
    QLocale::setDefault(QLocale::system());
}

class TextOrder : public testing::TestWithParam<const char*>
{};

TEST_P(TextOrder, TakesDigitsAsNumbersAndPutsLettersLast)
{
    const QStringList ascending = {
        "",   "9",    "16",    "17", "17b", "19",     "123456789012345678901234567890",
        "a2", "a2b3", "a2b12", "a9", "a10", "backup", "common",
    };
    QLocale::setDefault(QLocale(QString::fromLatin1(GetParam())));
    // A thread takes the default locale on its first comparison.
    std::thread([&ascending] {
        for (int i = 0; i < ascending.size(); ++i) {
            for (int j = 0; j < ascending.size(); ++j) {
                const int order = localeAwareCompare(ascending[i], ascending[j]);
                EXPECT_EQ(order < 0, i < j) << qPrintable(ascending[i] + '|' + ascending[j]);
                EXPECT_EQ(order > 0, i > j) << qPrintable(ascending[i] + '|' + ascending[j]);
            }
        }
        const int sameNumber = localeAwareCompare("09", "9");
        EXPECT_NE(sameNumber, 0);
        EXPECT_EQ(localeAwareCompare("9", "09"), -sameNumber);
    }).join();
    QLocale::setDefault(QLocale::system());
}

INSTANTIATE_TEST_SUITE_P(
    Locales, TextOrder, testing::Values("C", "en_US", "de_DE", "sv_SE"),
    [](const auto& locale) { return std::string(locale.param); });

TEST(TextVersions, AreComparedNumberByNumber)
{
    struct Case
    {
        const char* a;
        const char* b;
        int order;
    };
    const Case cases[] = {
        {"2.0", "2.0", 0},       {"2.1", "2.1.0", 0},
        {"2.1.9", "2.1.43", -1}, {"2.10", "2.9", 1},
        {"3", "2.9.9", 1},       {"", "0.0", 0},
        {"", "0.0.1", -1},       {"2.1.43beta", "2.1.43", 0},
        {"x.1", "0.1", 0},       {"1.99999999999999999999", "1.100000000000000000000", -1},
        {"1.007", "1.7", 0},
    };
    for (const auto& [a, b, order] : cases) {
        SCOPED_TRACE(testing::Message() << a << " and " << b);
        EXPECT_EQ(compareVersions(a, b), order);
        EXPECT_EQ(compareVersions(b, a), -order);
        EXPECT_EQ(versionSmallerThan(a, b), order < 0);
        EXPECT_EQ(versionGreaterThan(a, b), order > 0);
    }
}

} // namespace lumo::text
