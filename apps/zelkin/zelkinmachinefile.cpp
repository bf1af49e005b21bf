#include "zelkinmachinefile.h"

#include "zelkininputfile.h"

#include <zelkinafpmachine.h>
#include <zelkinmachinedescriptioncheck.h>
#include <zelkinmachineloader.h>
#include <zelsysexception.h>

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QXmlStreamReader>

namespace {

ZELSysException CannotRead(const QFile& file)
{
    return ZELSysException(
        QStringLiteral("cannot read %1: %2").arg(ZELKinInputFile::GetName(file.fileName()), file.errorString()));
}

// Reads no more than one byte past the largest description the loader
// takes, so that a huge file costs no memory and still gets its message.
QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw CannotRead(file);
    const QByteArray text = file.read(ZELKinMachineLoader::MaximumDescriptionBytes + 1);
    // A read that fails half-way (a network share gone, say) must not pass
    // for a short description.
    if (file.error() != QFileDevice::NoError)
        throw CannotRead(file);
    // The loader's message names no file. A pipe or a device may never end
    // (/dev/zero, /dev/urandom, a pipe left open): its name is said here, as
    // the one clue to which of the inputs it was.
    if (file.isSequential() && text.size() > ZELKinMachineLoader::MaximumDescriptionBytes)
        throw ZELSysException(
            QStringLiteral("%1: the machine description is larger than %2 bytes; a pipe or a "
                           "device is read no further")
                .arg(ZELKinInputFile::GetName(path), QString::number(ZELKinMachineLoader::MaximumDescriptionBytes)));
    return text;
}

// The loader takes a document that does not parse for an empty one, which
// would be reported as "not an AFP machine description", far from the fault.
// A streaming pass keeps no tree, so nesting of any depth costs it nothing;
// a description too large is left to the loader's own message.
void RequireWellFormed(const QString& path, const QByteArray& text)
{
    if (text.size() > ZELKinMachineLoader::MaximumDescriptionBytes)
        return;
    QXmlStreamReader reader(text);
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError())
        throw ZELSysException(QStringLiteral("%1:%2:%3: %4")
                                  .arg(ZELKinInputFile::GetName(path), QString::number(reader.lineNumber()),
                                       QString::number(reader.columnNumber()), reader.errorString()));
}

} // namespace

ZELKinAFPMachine* ZELKinMachineFile::Load(ZELGeoContainer* container, const QString& path)
{
    QByteArray text = ReadFile(path);
    RequireWellFormed(path, text);
    // The loader builds numbers it cannot read as 0 and joints without a
    // direction; such a machine would post NC that moves where nobody asked.
    ZELKinMachineDescriptionCheck().Check(text);

    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    // The loader builds nothing but AFP machines; null means another kind.
    auto* machine = qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(container).LoadFromXML(&buffer));
    if (!machine)
        throw ZELSysException(QStringLiteral("not an AFP machine description"));
    return machine;
}
