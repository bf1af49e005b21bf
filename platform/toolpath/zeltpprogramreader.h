#ifndef ZELTPPROGRAMREADER_H
#define ZELTPPROGRAMREADER_H

#include "zeltoolpath_export.h"

#include <QCoreApplication>

#include <memory>

class ZELGeoContainer;
class ZELTPProgram;
class ZELTPProgramReaderPrivate;

/*!
    Reads a toolpath document (JSON, format "zelkin-toolpath", version 1)
    and builds the toolpath program it holds in a geometry container. The
    format is described for CAM developers in docs/toolpath-format.md.

    The document gives angles in degrees, which the reader converts to
    radians; lengths stay in mm and feed rates in mm/min. Each point's tool
    frame is built from its origin, travel direction (u) and surface normal
    (w), with v = w x u. Off-part points that give no directions take them
    from their neighbours along their link, course or probing procedure.
    The junction point of two consecutive trajectories of a course is one
    point that both trajectories hold, and the on-part points of a course
    are numbered from its roll-in point (0), those before it negative.

    What the reader builds is fit to be posted as far as the document alone
    can tell: every text holds no line end, other control character or
    double quote (ZELTPText; names also ZELTPFileName), every number lies
    in the documented range of its kind, a roll layup has a course, a tow
    trajectory lays only tows of its course's mask, and a course's tows fit
    under its roller (ZELTPMachineConfiguration::GetRollerTows).

    A read either builds the whole program or throws ZELTPFormatException
    with one message naming the document, the JSON path of the value at
    fault and what was expected there; the container is then left as it was
    (its modified flag included). Any input ends in one or the other: the
    reader keeps no state between reads, nests no deeper than 1024 levels,
    and allocates in proportion to the document.
*/
class ZELTOOLPATH_EXPORT ZELTPProgramReader
{
    Q_DECLARE_TR_FUNCTIONS(ZELTPProgramReader)

public:
    //! The reader creates its objects in `container` (not owned).
    explicit ZELTPProgramReader(ZELGeoContainer* container);
    virtual ~ZELTPProgramReader();

    //! The largest document the parser takes: 4 GiB less one byte.
    static constexpr qint64 MaximumDocumentBytes = 0xFFFFFFFF;

    //! Reads the document in the file `fileName` and returns the program
    //! (owned by the container), every object of it initialised. Throws
    //! ZELTPFormatException "<fileName>: cannot open the file: <reason>"
    //! when the file cannot be read, and the format's messages (source
    //! `fileName`) for a document that breaks a rule.
    //!
    //! A document of more than `maximumBytes` bytes (at most
    //! MaximumDocumentBytes) is refused with "<fileName>: the toolpath is
    //! larger than <maximumBytes> bytes, the most the reader takes": a file
    //! whose size is known before it is read, while a pipe, a device or a
    //! file of no size is read as a stream, to its end or to one byte past
    //! the bound, and never held larger. A stream is refused at its first
    //! control byte (below 0x20, other than tab, line feed and carriage
    //! return), which no JSON text holds: "<fileName>: byte <n> is the
    //! control character 0x<hh>, which no JSON text holds; a pipe or a
    //! device is read no further". A device such as /dev/zero never ends.
    ZELTPProgram* Read(const QString& fileName, qint64 maximumBytes = MaximumDocumentBytes) const;
    //! Reads the document `data` as Read reads a file's bytes; error
    //! messages name the document `sourceName`.
    ZELTPProgram* ReadData(const QByteArray& data, const QString& sourceName) const;

protected:
    explicit ZELTPProgramReader(ZELTPProgramReaderPrivate* d);

    std::unique_ptr<ZELTPProgramReaderPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELTPProgramReader)
    Q_DISABLE_COPY_MOVE(ZELTPProgramReader)
};

#endif // ZELTPPROGRAMREADER_H
