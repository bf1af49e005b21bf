// Loads a small machine description through the installed library, catches
// the library's exception across its edge, and checks what it got.

#include <ZELKinematics/zelgeocontainer.h>
#include <ZELKinematics/zelkinmachine.h>
#include <ZELKinematics/zelkinmachineloader.h>
#include <ZELKinematics/zelkinvariable.h>
#include <ZELKinematics/zelsysexception.h>

#include <QBuffer>

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

int Fail(const char* what)
{
    std::fprintf(stderr, "zelkin_host: %s\n", what);
    return 1;
}

} // namespace

int main()
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
    std::puts("zelkin_host: the installed package works");
    return 0;
}
