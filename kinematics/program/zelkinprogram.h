#ifndef ZELKINPROGRAM_H
#define ZELKINPROGRAM_H

#include "zelkinscript.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

class ZELKinMachine;
class ZELKinProcedure;
class ZELKinProgramPrivate;

/*!
    The kinematic program that one machine runs: its procedures (roll layup
    and probing) in execution order, and the header items that the NC writer
    prints (author, date, original file name, revision number).

    A procedure joins the program in its own constructor, always at the end;
    procedures are never re-ordered or moved to another program, and
    RemoveProcedure is the only way to shorten the list. The program holds
    counted links to its procedures and its machine but owns neither.

    The flat command index runs over the procedures' commands, procedure
    after procedure. The program takes no commands itself: inserting one
    throws ZELSysNotImplementedException.

    Record (after the geometry part): machine (reference), procedures (count
    as qint32, then one reference each), date (QDateTime), author (QString).
    The original file name and the revision number are not saved: a loaded
    program has an empty original file name and revision "0".
*/
class ZELKINEMATICS_EXPORT ZELKinProgram : public ZELKinScript
{
    Q_OBJECT

public:
    //! Loading constructor: an empty program to be filled by Load.
    Q_INVOKABLE ZELKinProgram(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinProgram() override;

    //! The machine the program is for; null once it has gone.
    ZELKinMachine* GetMachine() const;

    //! The list size, procedures that have gone included.
    int GetNumProcedures() const;
    //! The procedure at `index`; null if it has been destroyed. Throws
    //! ZELSysOutOfBoundsException(index, 0, count - 1, true, true) outside
    //! the list.
    ZELKinProcedure* GetProcedure(int index) const;
    //! A copy of the list in order (null where a procedure has gone).
    QList<ZELKinProcedure*> GetProcedures() const;
    //! Removes the first entry that is `procedure`, without destroying the
    //! procedure, which still answers this program to GetProgram. Throws
    //! ZELSysException "procedure does not belong to this program" when no
    //! entry is (a null procedure never is), changing nothing.
    void RemoveProcedure(ZELKinProcedure* procedure);
    //! The positions of each roll layup procedure, by the name of the
    //! toolpath procedure it was translated from; a procedure without one,
    //! or of another kind, is left out.
    QHash<QString, qint64> GetPositionsByProcedure() const;

    //! The sum of the procedures' command counts (a procedure that has gone
    //! counts none).
    int GetNumCommands() const override;
    /*!
        The command at a flat index across the procedures, in list order; a
        procedure without commands is skipped. Throws
        ZELSysOutOfBoundsException with bounds 0 and GetNumCommands(), both
        inclusive: for a negative index its value is the index; for an index
        at or past the end it is what remains of the index once every
        procedure's count has been taken off it (2 and 2 commands, index 5:
        the value is 1).
    */
    ZELKinCommand* GetCommand(int index) const override;
    //! The program itself.
    ZELKinProgram* GetProgram() const override;

    QString GetAuthor() const;
    void SetAuthor(const QString& author);
    //! The program date; a null date-time until set.
    QDateTime GetDate() const;
    void SetDate(const QDateTime& date);
    //! The name of the toolpath file the program came from; empty until set.
    QString GetOriginalFileName() const;
    void SetOriginalFileName(const QString& name);
    //! "0" until set.
    QString GetRevisionNumber() const;
    void SetRevisionNumber(const QString& revision);

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved machine or a
    //! saved procedure names no such object in the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinProgram(ZELKinProgramPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

    bool VisitCommands(const CommandVisitor& visit, WalkOrder order) const override;

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Creates an empty program for `machine` in the machine's container.
    //! A null machine gives a program outside any container, for no machine.
    explicit ZELKinProgram(ZELKinMachine* machine);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinProgram)
};

#endif // ZELKINPROGRAM_H
