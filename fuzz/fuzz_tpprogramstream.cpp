// A toolpath document read one procedure at a time must come out as the
// whole-document reader reads the same file: refused with the same
// message, or read into as many procedures holding as many points. A
// difference is a finding.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>
#include <zeltppoint.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>
#include <zeltpprogramstream.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

// What a reading came to: the message it was refused with, or the
// procedures and points it read.
struct Outcome
{
    QString refusal;
    int procedures = 0;
    int points = 0;

    bool operator==(const Outcome& other) const
    {
        return refusal == other.refusal && procedures == other.procedures && points == other.points;
    }
};

int PointsIn(const ZELGeoContainer& container)
{
    int points = 0;
    for (const ZELGeoGeometry* geometry : container.GetGeometries())
        points += qobject_cast<const ZELTPPoint*>(geometry) ? 1 : 0;
    return points;
}

Outcome ReadWhole(const QString& path)
{
    ZELGeoContainer container;
    try {
        const ZELTPProgram* program = ZELTPProgramReader(&container).Read(path);
        return Outcome{QString(), program->GetNumProcedures(), PointsIn(container)};
    } catch (const ZELSysException& error) {
        return Outcome{error.GetMessage()};
    }
}

Outcome ReadByProcedure(const QString& path)
{
    Outcome outcome;
    try {
        ZELTPProgramStream stream;
        stream.Open(path);
        for (int i = 0; i < stream.GetNumProcedures(); ++i) {
            ZELGeoContainer container;
            stream.ReadProcedure(i, &container);
            outcome.points += PointsIn(container);
        }
        outcome.procedures = stream.GetNumProcedures();
        return outcome;
    } catch (const ZELSysException& error) {
        return Outcome{error.GetMessage()};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("fuzz.json"));
    QFile file(path);
    const QByteArray bytes = ZELKinFuzz::Bytes(data, size);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        return 0;
    file.close();
    const Outcome whole = ReadWhole(path);
    const Outcome streamed = ReadByProcedure(path);
    if (whole == streamed)
        return 0;
    std::fprintf(stderr, "read whole: \"%s\", %d procedures, %d points; by procedure: \"%s\", %d procedures, %d points\n",
                 qPrintable(whole.refusal), whole.procedures, whole.points, qPrintable(streamed.refusal),
                 streamed.procedures, streamed.points);
    std::abort();
}
