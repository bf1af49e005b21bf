#include <zelsysprogress.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QList>
#include <QMutex>
#include <QMutexLocker>
#include <QStringList>

#include <stdexcept>
#include <thread>
#include <vector>

namespace {

// Takes the process-wide destinations for one test and gives them back.
class Destinations : public ::testing::Test
{
protected:
    void TearDown() override
    {
        ZELSysProgress::SetLineHandler(ZELSysProgress::LineHandler());
        ZELSysProgress::SetStepHandler(ZELSysProgress::StepHandler());
    }

    void RecordSteps()
    {
        ZELSysProgress::SetStepHandler([this](const ZELSysProgress::Step& step) {
            QMutexLocker locker(&mutex);
            steps.append(step);
        });
    }

    QMutex mutex;
    QList<ZELSysProgress::Step> steps;
};

using ZELSysProgressLines = Destinations;
using ZELSysProgressSteps = Destinations;

} // namespace

TEST_F(ZELSysProgressLines, GoToTheHandlerWithoutTheirLineEnd)
{
    QStringList lines;
    ZELSysProgress::SetLineHandler([&lines](const QString& line) { lines.append(line); });
    ZELSysProgress::WriteLine(QStringLiteral("Solving kinematics"));
    ZELSysProgress::WriteLine(QStringLiteral("  Processing Ply 1"));
    EXPECT_EQ(lines, QStringList({QStringLiteral("Solving kinematics"), QStringLiteral("  Processing Ply 1")}));
}

TEST_F(ZELSysProgressLines, GoToTheDeviceAsUtf8LinesEachWithALineEnd)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    ZELSysProgress::SetLineDevice(&device);
    ZELSysProgress::WriteLine(QStringLiteral("  Writing Fl\u00fcgel"));
    ZELSysProgress::WriteLine(QString());
    EXPECT_EQ(device.data(), QByteArray("  Writing Fl\xc3\xbcgel\n\n"));
}

TEST_F(ZELSysProgressLines, GoToStandardOutputByDefaultAndOnceTheHostGivesTheirDestinationBack)
{
    QStringList lines;
    ZELSysProgress::SetLineHandler([&lines](const QString& line) { lines.append(line); });
    ZELSysProgress::SetLineDevice(nullptr);
    ::testing::internal::CaptureStdout();
    ZELSysProgress::WriteLine(QStringLiteral("Translating the program"));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Translating the program\n");
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(ZELSysProgressSteps, TellTheStartEachAdvanceAndTheEndOfAStretch)
{
    RecordSteps();
    {
        ZELSysProgress progress(QStringLiteral("Solving kinematics"), QStringLiteral("positions"), 10);
        progress.SetItem(QStringLiteral("Ply 2"));
        progress.Advance(4);
        progress.Advance(6);
    }
    ASSERT_EQ(steps.size(), 5);
    EXPECT_EQ(steps.at(0).phase, QStringLiteral("Solving kinematics"));
    EXPECT_EQ(steps.at(0).unit, QStringLiteral("positions"));
    EXPECT_EQ(steps.at(0).total, 10);
    EXPECT_EQ(steps.at(0).done, 0);
    EXPECT_TRUE(steps.at(0).item.isEmpty());
    EXPECT_EQ(steps.at(1).item, QStringLiteral("Ply 2"));
    EXPECT_EQ(steps.at(2).done, 4);
    EXPECT_EQ(steps.at(3).done, 10);
    EXPECT_EQ(steps.at(3).item, QStringLiteral("Ply 2"));
    EXPECT_FALSE(steps.at(3).finished);
    EXPECT_TRUE(steps.at(4).finished);
    EXPECT_EQ(steps.at(4).done, 10);
}

TEST_F(ZELSysProgressSteps, AdvancesFromManyThreadsAddUpToTheirSum)
{
    RecordSteps();
    constexpr int kThreads = 8;
    constexpr int kAdvances = 1000;
    {
        ZELSysProgress progress(QStringLiteral("Writing the NC"), QStringLiteral("positions"),
                                qint64(kThreads) * kAdvances * 3);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&progress] {
                for (int i = 0; i < kAdvances; ++i)
                    progress.Advance(3);
            });
        for (std::thread& thread : threads)
            thread.join();
    }
    ASSERT_FALSE(steps.isEmpty());
    EXPECT_TRUE(steps.last().finished);
    EXPECT_EQ(steps.last().done, qint64(kThreads) * kAdvances * 3);
    EXPECT_EQ(steps.size(), kThreads * kAdvances + 2);
}

TEST_F(ZELSysProgressSteps, GoNowhereWithoutAHandler)
{
    ZELSysProgress progress(QStringLiteral("Reading the NC"), QString(), 0);
    progress.Advance(1);
    RecordSteps();
    progress.Advance(1);
    ASSERT_EQ(steps.size(), 1);
    // What was done before the handler came is counted all the same.
    EXPECT_EQ(steps.first().done, 2);
}

TEST_F(ZELSysProgressSteps, AStretchEndedByAnExceptionIsAbandoned)
{
    RecordSteps();
    try {
        ZELSysProgress progress(QStringLiteral("Reading the toolpath"), QString(), 0);
        throw std::runtime_error("unreadable");
    } catch (const std::runtime_error&) {
    }
    {
        ZELSysProgress progress(QStringLiteral("Reading the toolpath"), QString(), 0);
    }
    ASSERT_EQ(steps.size(), 4);
    EXPECT_TRUE(steps.at(1).finished);
    EXPECT_TRUE(steps.at(1).abandoned);
    EXPECT_TRUE(steps.at(3).finished);
    EXPECT_FALSE(steps.at(3).abandoned);
}
