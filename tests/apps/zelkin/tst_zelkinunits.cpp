#include "zelkinunits.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

struct UnitsCase
{
    const char* name;
    QString shown;
    QString expected;
};

void PrintTo(const UnitsCase& testCase, std::ostream* os)
{
    *os << testCase.name;
}

class ZELKinUnitsText : public ::testing::TestWithParam<UnitsCase>
{
};

const double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST_P(ZELKinUnitsText, ReadsAsPeopleWriteIt)
{
    EXPECT_EQ(GetParam().shown, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Counts, ZELKinUnitsText,
    ::testing::Values(UnitsCase{"ZeroIsZero", ZELKinUnits::Grouped(0), QStringLiteral("0")},
                      UnitsCase{"ThreeDigitsHaveNoBlank", ZELKinUnits::Grouped(999), QStringLiteral("999")},
                      UnitsCase{"AThousandHasOne", ZELKinUnits::Grouped(1000), QStringLiteral("1 000")},
                      UnitsCase{"AMillionPositions", ZELKinUnits::Grouped(1013413), QStringLiteral("1 013 413")},
                      UnitsCase{"ANegativeCountKeepsItsSign", ZELKinUnits::Grouped(-1234), QStringLiteral("-1 234")}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Durations, ZELKinUnitsText,
    ::testing::Values(UnitsCase{"NoTimeAtAll", ZELKinUnits::Duration(0.0), QStringLiteral("0.0 s")},
                      UnitsCase{"TenthsBelowTenSeconds", ZELKinUnits::Duration(4.24), QStringLiteral("4.2 s")},
                      UnitsCase{"JustBelowTenSeconds", ZELKinUnits::Duration(9.94), QStringLiteral("9.9 s")},
                      UnitsCase{"RoundingToTenSecondsDropsTheTenth", ZELKinUnits::Duration(9.96),
                                QStringLiteral("10 s")},
                      UnitsCase{"WholeSecondsBelowAMinute", ZELKinUnits::Duration(59.4), QStringLiteral("59 s")},
                      UnitsCase{"RoundingToAMinute", ZELKinUnits::Duration(59.6), QStringLiteral("1:00")},
                      UnitsCase{"MinutesAndSeconds", ZELKinUnits::Duration(187.0), QStringLiteral("3:07")},
                      UnitsCase{"HoursMinutesAndSeconds", ZELKinUnits::Duration(3727.0), QStringLiteral("1:02:07")},
                      UnitsCase{"ManyHours", ZELKinUnits::Duration(999000.0), QStringLiteral("277:30:00")},
                      UnitsCase{"NaNIsUnknown", ZELKinUnits::Duration(kNaN), QStringLiteral("-")},
                      UnitsCase{"NegativeIsUnknown", ZELKinUnits::Duration(-1.0), QStringLiteral("-")},
                      UnitsCase{"InfinityIsUnknown", ZELKinUnits::Duration(std::numeric_limits<double>::infinity()),
                                QStringLiteral("-")}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Sizes, ZELKinUnitsText,
    ::testing::Values(UnitsCase{"BytesBelowAThousand", ZELKinUnits::Size(812), QStringLiteral("812 B")},
                      UnitsCase{"JustBelowAKilobyte", ZELKinUnits::Size(999), QStringLiteral("999 B")},
                      UnitsCase{"AKilobyte", ZELKinUnits::Size(1000), QStringLiteral("1.0 kB")},
                      UnitsCase{"Kilobytes", ZELKinUnits::Size(3400), QStringLiteral("3.4 kB")},
                      UnitsCase{"JustBelowAMegabyte", ZELKinUnits::Size(999940), QStringLiteral("999.9 kB")},
                      UnitsCase{"RoundingUpToAMegabyteSaysSo", ZELKinUnits::Size(999960), QStringLiteral("1.0 MB")},
                      UnitsCase{"Megabytes", ZELKinUnits::Size(12345678), QStringLiteral("12.3 MB")},
                      UnitsCase{"Gigabytes", ZELKinUnits::Size(1200000000), QStringLiteral("1.2 GB")}),
    [](const auto& info) { return std::string(info.param.name); });
