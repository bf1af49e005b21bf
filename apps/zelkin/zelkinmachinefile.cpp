#include "zelkinmachinefile.h"

#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelsysexception.h>

#include <QBuffer>
#include <QByteArray>
#include <QDomDocument>
#include <QFile>

namespace {

ZELSysException CannotRead(const QFile& file)
{
    return ZELSysException(QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
}

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw CannotRead(file);
    const QByteArray text = file.readAll();
    // A read that fails half-way (a network share gone, say) must not pass
    // for a short description.
    if (file.error() != QFileDevice::NoError)
        throw CannotRead(file);
    return text;
}

// The loader takes a document that does not parse for an empty one, which
// would be reported as "not an AFP machine description", far from the fault.
void RequireWellFormed(const QString& path, const QByteArray& text)
{
    QDomDocument document;
    QString message;
    int line = 0;
    int column = 0;
    if (!document.setContent(text, false, &message, &line, &column))
        throw ZELSysException(QStringLiteral("%1:%2:%3: %4")
                                  .arg(path, QString::number(line), QString::number(column), message));
}

} // namespace

ZELKinAFPMachine* ZELKinMachineFile::Load(ZELGeoContainer* container, const QString& path)
{
    QByteArray text = ReadFile(path);
    RequireWellFormed(path, text);

    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    // The loader builds nothing but AFP machines; null means another kind.
    auto* machine = qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(container).LoadFromXML(&buffer));
    if (!machine)
        throw ZELSysException(QStringLiteral("not an AFP machine description"));
    return machine;
}
