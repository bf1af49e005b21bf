// How many procedures a post holds at once, and the refusal of a toolpath
// whose largest procedure alone would not fit.

#include "zelkinpostmemory.h"

#include <zelsysexception.h>

#include <zeltestsupport.h>

namespace {

constexpr qint64 kGiB = qint64(1) << 30;

ZELKinPostMemory::ToolpathSizes Sizes(qint64 largestBytes)
{
    return ZELKinPostMemory::ToolpathSizes{QStringLiteral("wing.json"), 3 * largestBytes, 2, largestBytes};
}

struct InFlightCase
{
    const char* name;
    qint64 largestBytes;
    qint64 memory;
    int cores;
    int expected;
};
ZELTEST_PRINT_CASE_BY_NAME(InFlightCase);

class ZELKinPostMemoryInFlight : public ::testing::TestWithParam<InFlightCase>
{
};

TEST_P(ZELKinPostMemoryInFlight, HoldsAsManyOfTheLargestProcedureAsFitUpToTheCores)
{
    const InFlightCase& c = GetParam();
    EXPECT_EQ(ZELKinPostMemory::ChooseProceduresInFlight(Sizes(c.largestBytes), c.memory, c.cores), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, ZELKinPostMemoryInFlight,
                         ::testing::Values(InFlightCase{"SmallProceduresOnePerCore", 100 << 20, 24 * kGiB, 2, 2},
                                           InFlightCase{"ManyCoresAsManyAsFit", kGiB, 24 * kGiB, 64, 3},
                                           InFlightCase{"OneFitsExactly", 3 * kGiB, 24 * kGiB, 2, 1},
                                           InFlightCase{"UnknownMemoryOnePerCore", 10 * kGiB, 0, 4, 4},
                                           InFlightCase{"NoCoresToldStillOne", 1 << 20, 24 * kGiB, 0, 1}),
                         [](const ::testing::TestParamInfo<InFlightCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinPostMemory, AToolpathWithoutProceduresHoldsOnePerCore)
{
    EXPECT_EQ(ZELKinPostMemory::ChooseProceduresInFlight(
                  ZELKinPostMemory::ToolpathSizes{QStringLiteral("t.json"), 120, -1, 0}, kGiB, 2),
              2);
}

TEST(ZELKinPostMemory, ALargestProcedureThatAloneDoesNotFitIsRefusedNamingItAndTheFigures)
{
    EXPECT_THROW_MESSAGE(ZELKinPostMemory::ChooseProceduresInFlight(Sizes(3 * kGiB + (kGiB >> 2)), 24 * kGiB, 2),
                         ZELSysException,
                         QStringLiteral("wing.json: its largest procedure, $.program.procedures[2], 3.3 GiB of the "
                                        "file's 9.8 GiB, needs about 26.0 GiB of memory to post, more than this "
                                        "machine's 24.0 GiB"));
}

} // namespace
