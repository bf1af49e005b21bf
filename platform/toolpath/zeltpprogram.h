#ifndef ZELTPPROGRAM_H
#define ZELTPPROGRAM_H

#include "zeltpobject.h"

#include <QList>

class ZELTPProcedure;
class ZELTPProgramPrivate;

/*!
    A toolpath program: the procedures (roll layups and probing sequences)
    in the order the machine runs them, and the program's revision. This is
    what a host hands to the translator.

    Record: that of ZELTPObject (the name), then the revision (QString) and
    the procedures (count as qint32, then one ZELGeoGeometryRef each, empty
    for a procedure that has been destroyed).
*/
class ZELTOOLPATH_EXPORT ZELTPProgram : public ZELTPObject
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed program of revision "0" without
    //! procedures, to be filled by Load.
    Q_INVOKABLE ZELTPProgram(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the program in `container` (null for one outside any
    //! container), of revision "0" without procedures.
    ZELTPProgram(ZELGeoContainer* container, const QString& name);
    ~ZELTPProgram() override;

    //! The revision of the program; "0" by default.
    QString GetRevision() const;
    void SetRevision(const QString& revision);

    //! Appends a procedure. Throws ZELSysException "cannot add a null
    //! procedure" for null; nothing changes then.
    void AddProcedure(ZELTPProcedure* procedure);
    //! The number of entries, procedures that have been destroyed included.
    int GetNumProcedures() const;
    //! The procedure at `index`; null once it has been destroyed. Throws
    //! ZELSysOutOfBoundsException(index, 0, count - 1, true, true) outside
    //! the list.
    ZELTPProcedure* GetProcedure(int index) const;
    //! Every entry in order, null for a destroyed procedure.
    QList<ZELTPProcedure*> GetProcedures() const;

    void Save(ZELGeoStream& stream) const override;
    //! A procedure count larger than the entries present stops at the end of
    //! the record. Throws ZELGeoGeometryNotFoundException when a saved
    //! procedure names no ZELTPProcedure of the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPProgram(ZELTPProgramPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPProgram(ZELTPProgramPrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPProgram)
};

#endif // ZELTPPROGRAM_H
