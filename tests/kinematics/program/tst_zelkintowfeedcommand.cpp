#include "zelkintestprograms.h"
#include "zelkintestrolllayup.h"

#include <zelgeostream.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

using ZELTest::kNaN;
using ZELTest::RollLayupFixture;

namespace {

// A tow feed command record as ZELKinTowFeedCommand::Save lays it out.
// `count` is written as given, so that it may disagree with the rates.
QByteArray TowFeedRecord(const ZELGeoGeometryRef& script, qint32 count, const QList<double>& rates)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script << count;
    for (const double rate : rates)
        out << rate;
    return record;
}

void ExpectSameRates(const QList<double>& expected, const QList<double>& actual)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        EXPECT_TRUE(ZELTest::SameDouble(expected.at(i), actual.at(i), ZELTest::kExact)) << i;
}

} // namespace

struct LargestRateCase
{
    const char* name;
    QList<double> rates;
    double largest;
};
ZELTEST_PRINT_CASE_BY_NAME(LargestRateCase);

class ZELKinTowFeedCommandLargestRate : public ::testing::TestWithParam<LargestRateCase>
{
};

TEST_P(ZELKinTowFeedCommandLargestRate, IsTheLargestButNeverBelowOne)
{
    RollLayupFixture f;
    const ZELKinTowFeedCommand* command =
        ZELKinTestAccess::CreateTowFeedCommand(ZELTest::AddCourse(f.procedure, 0), GetParam().rates);
    EXPECT_TRUE(ZELTest::SameDouble(GetParam().largest, command->GetLargestRate(), ZELTest::kExact));
}

INSTANTIATE_TEST_SUITE_P(Rates, ZELKinTowFeedCommandLargestRate,
                         ::testing::Values(LargestRateCase{"AllBelowOneGiveOne", {0.2, 0.5}, 1.0},
                                           LargestRateCase{"OneAboveOneGivesIt", {0.5, 3.0}, 3.0},
                                           LargestRateCase{"NoRatesGiveOne", {}, 1.0},
                                           LargestRateCase{"LargestWhereverItStands", {2.0, 4.5, 1.5}, 4.5},
                                           LargestRateCase{"NegativeRatesGiveOne", {-5.0}, 1.0},
                                           LargestRateCase{"NaNIsPassedOver", {kNaN, 2.5, kNaN}, 2.5},
                                           LargestRateCase{"OnlyNaNGivesOne", {kNaN}, 1.0}),
                         [](const ::testing::TestParamInfo<LargestRateCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinTowFeedCommand, KeepsACopyOfTheRates)
{
    RollLayupFixture f;
    QList<double> rates = {1.0, 0.5, kNaN};
    const ZELKinTowFeedCommand* command =
        ZELKinTestAccess::CreateTowFeedCommand(ZELTest::AddCourse(f.procedure, 0), rates);
    rates[0] = 9.0;
    ExpectSameRates({1.0, 0.5, kNaN}, command->GetRates());
}

TEST(ZELKinTowFeedCommand, CreationInsertsItIntoTheCourseAtTheIndex)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 2);
    const ZELKinTowFeedCommand* first = ZELKinTestAccess::CreateTowFeedCommand(course, {1.0}, 0);
    const ZELKinTowFeedCommand* last = ZELKinTestAccess::CreateTowFeedCommand(course, {2.0}, 3);
    EXPECT_EQ(first->GetScript(), course);
    EXPECT_EQ(first->GetIndex(), 0);
    EXPECT_EQ(last->GetIndex(), 3);
    EXPECT_EQ(course->GetCommand(0), first);
    EXPECT_EQ(course->GetCommand(3), last);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTowFeedCommand(course, {}, 5), ZELSysOutOfBoundsException,
                         "value 5 is out of bounds [-1, 4]");
    EXPECT_EQ(course->GetNumCommands(), 4);
}

TEST(ZELKinTowFeedCommand, WithoutACourseStandsOutsideAnyContainer)
{
    const ZELKinTowFeedCommand* command = ZELKinTestAccess::CreateTowFeedCommand(nullptr, {2.0});
    EXPECT_EQ(command->GetContainer(), nullptr);
    EXPECT_EQ(command->GetScript(), nullptr);
    ExpectSameRates({2.0}, command->GetRates());
    delete command;
}

TEST(ZELKinTowFeedCommand, LoadingConstructionHasNoRates)
{
    const ZELKinTowFeedCommand command(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(command.GetRates().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(1.0, command.GetLargestRate(), ZELTest::kExact));
}

TEST(ZELKinTowFeedCommand, RecordHoldsTheScriptThenTheRates)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 0);
    const ZELKinTowFeedCommand* command = ZELKinTestAccess::CreateTowFeedCommand(course, {1.25, kNaN});
    EXPECT_EQ(command->GetCurrentState(), TowFeedRecord(course->GetReference(), 2, {1.25, kNaN}));
}

TEST(ZELKinTowFeedCommand, SaveAndLoadKeepScriptAndRates)
{
    RollLayupFixture f;
    ZELKinTowCourse* course = ZELTest::AddCourse(f.procedure, 1);
    ZELKinTestAccess::CreateTowFeedCommand(course, {0.75, kNaN, 1.5});

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinTowFeedCommand* loaded = ZELTest::FirstOf<ZELKinTowFeedCommand>(target);
    ASSERT_NE(loaded, nullptr);
    ExpectSameRates({0.75, kNaN, 1.5}, loaded->GetRates());
    EXPECT_TRUE(ZELTest::SameDouble(1.5, loaded->GetLargestRate(), ZELTest::kExact));
    EXPECT_EQ(loaded->GetScript(), ZELTest::FirstOf<ZELKinTowCourse>(target));
}

TEST(ZELKinTowFeedCommand, RateCountLargerThanTheRatesPresentStopsAtTheEndOfTheRecord)
{
    RollLayupFixture f;
    ZELKinTowFeedCommand loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(TowFeedRecord(ZELGeoGeometryRef(), 1000000, {2.0, 3.0}), &f.container);
    EXPECT_NO_THROW(loaded.Load(stream));
    ExpectSameRates({2.0, 3.0}, loaded.GetRates());
}

TEST(ZELKinTowFeedCommand, LoadReplacesTheRatesItHad)
{
    RollLayupFixture f;
    ZELKinTowFeedCommand* command = ZELKinTestAccess::CreateTowFeedCommand(ZELTest::AddCourse(f.procedure, 0), {5.0});
    ZELGeoStream stream(TowFeedRecord(ZELGeoGeometryRef(), 0, {}), &f.container);
    command->Load(stream);
    EXPECT_TRUE(command->GetRates().isEmpty());
}
