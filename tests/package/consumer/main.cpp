// Loads a small machine description through the installed library, catches
// the library's exception across its edge, and checks what it got; then, with
// a machine description and a toolpath given on the command line, posts the
// toolpath as a host does (posting.cpp).

#include "posting.h"

#include <ZELKinematics/zelgeocontainer.h>
#include <ZELKinematics/zelkinmachine.h>
#include <ZELKinematics/zelkinmachineloader.h>
#include <ZELKinematics/zelkinvariable.h>
#include <ZELKinematics/zelsysexception.h>

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <exception>

namespace {

const char kMachine[] = R"(<machine type="AFP" solver="RBR" tow-width="6.35" add-distance="50.8"
         add-pinch="12.7" cut-distance="76.2" head-travel="101.6" roller-radius="30"
         material-axis="U">
    <mask numTows="8">FF</mask>
    <variables>
        <variable name="X" type="linear" minimum="0" maximum="1000" max-speed="10" max-accel="1"/>
        <variable name="U" type="linear" max-speed="10" max-accel="1"/>
    </variables>
    <joints>
        <joint name="X" type="translation" vector="1,0,0" variables="X"/>
    </joints>
</machine>)";

ZELKinMachine* Load(ZELGeoContainer& container, QByteArray text)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    return ZELKinMachineLoader(&container).LoadFromXML(&device);
}

// Whether the two posts wrote files of the same names and the same ply
// files; the program-set and probing files print the time of posting.
bool SamePlyFiles(const QString& first, const QString& second)
{
    QDirIterator files(first, QDir::Files, QDirIterator::Subdirectories);
    int plies = 0;
    while (files.hasNext()) {
        const QString path = files.next();
        QFile mine(path);
        QFile theirs(QDir(second).filePath(QDir(first).relativeFilePath(path)));
        if (!mine.open(QIODevice::ReadOnly) || !theirs.open(QIODevice::ReadOnly))
            return false;
        if (path.endsWith(QLatin1String(".PPF")) && (++plies, mine.readAll() != theirs.readAll()))
            return false;
    }
    return plies > 0;
}

int Fail(const char* what)
{
    std::fprintf(stderr, "zelkin_host: %s\n", what);
    return 1;
}

} // namespace

// The progress lines reach the host's handler, the files are written, and a
// folder that cannot be made is an exception the host catches.
int CheckPosting(const QString& machinePath, const QString& toolpathPath)
{
    QTemporaryDir directory;
    const QString output = QDir(directory.path()).filePath(QStringLiteral("nc"));
    const QStringList lines = PostToolpath(machinePath, toolpathPath, output);
    if (!lines.contains(QStringLiteral("Translating the program"))
        || !lines.contains(QStringLiteral("Solving kinematics")))
        return Fail("the progress lines did not reach the host's handler");
    if (QDir(output).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() != 1)
        return Fail("the NC files were not written");
    const QString byProcedure = QDir(directory.path()).filePath(QStringLiteral("by-procedure"));
    PostToolpathByProcedure(machinePath, toolpathPath, byProcedure);
    if (!SamePlyFiles(output, byProcedure))
        return Fail("the post one procedure at a time wrote other files or other ply files");

    QFile blocker(QDir(directory.path()).filePath(QStringLiteral("a file")));
    if (!blocker.open(QIODevice::WriteOnly))
        return Fail("the scratch file could not be made");
    blocker.close();
    try {
        PostToolpath(machinePath, toolpathPath, QDir(blocker.fileName()).filePath(QStringLiteral("nc")));
        return Fail("a folder that cannot be made was accepted");
    } catch (const ZELSysException& exception) {
        if (!exception.GetMessage().startsWith(QLatin1String("Could not create the output directory")))
            return Fail("the writer's file error did not reach the host as an exception");
    }
    return 0;
}

int main(int argc, char* argv[])
{
    ZELGeoContainer container;
    ZELKinMachine* machine = Load(container, kMachine);
    if (!machine)
        return Fail("the machine did not load");
    if (machine->GetSolverName() != QLatin1String("RBR"))
        return Fail("the solver name was not read");
    if (!machine->GetVariable(QStringLiteral("X")))
        return Fail("variable X is missing");

    // The library throws; the host catches by the library's own type.
    QByteArray narrowTows(kMachine);
    narrowTows.replace("tow-width=\"6.35\"", "tow-width=\"0\"");
    try {
        ZELGeoContainer other;
        Load(other, narrowTows);
        return Fail("a zero tow width was accepted");
    } catch (const ZELSysException& exception) {
        if (exception.GetMessage() != QLatin1String("tow width must be greater than zero"))
            return Fail("the exception's message did not cross the library edge");
    }
    if (argc == 3) {
        if (const int failed = CheckPosting(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2])))
            return failed;
    }
    std::puts("zelkin_host: the installed package works");
    return 0;
}
