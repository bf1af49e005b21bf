#ifndef ZELKINPOSITION_H
#define ZELKINPOSITION_H

#include "zelkincommand.h"

#include <QVariant>

class ZELKinCourseLink;
class ZELKinPositionPrivate;
class ZELKinProbeProcedure;
class ZELKinVariable;
class ZELTPPoint;

/*!
    The command that places the machine: a value for some or all of the
    machine's variables, the toolpath point it realises, the feedrate of the
    move to it and two output settings. The solver writes its solutions into
    positions and the NC writer reads them back.

    Variable values are in each variable's own unit (mm for a linear axis,
    rad for a rotary one). A variable without a value is undefined at the
    position, and undefined and NaN are the same thing: setting NaN removes
    the value. A null variable is never defined. The values are keyed by the
    variable object, so two links to one variable are one key.

    Record (after the command's): feedrate (double); number of variable
    values (qint32), then per value the variable (reference) and the value
    (double), in no particular order; toolpath point (reference, empty when
    there is none); lateral position adjustment (double). The traori flag is
    not saved: a loaded position is always traori.
*/
class ZELKINEMATICS_EXPORT ZELKinPosition : public ZELKinCommand
{
    Q_OBJECT
    //! The feed the NC writer wrote for the move to this position (mm/min),
    //! NaN until it writes one. A declared property: millions of positions
    //! each get one, and a dynamic property would cost each its own storage
    //! and a property-change event.
    Q_PROPERTY(double actualFeedrate READ GetActualFeedrate WRITE SetActualFeedrate)
    //! The position's U offset (see GetUAxisOffset), declared for the same
    //! reason. It reads as an invalid QVariant while unset, as a dynamic
    //! property would; writing an invalid value, or one that is no number,
    //! unsets it.
    Q_PROPERTY(QVariant uAxisOffset READ ReadUAxisOffset WRITE WriteUAxisOffset)

public:
    //! Loading constructor: no values, NaN feedrate, traori, no toolpath
    //! point, no lateral adjustment, no script until Load.
    Q_INVOKABLE ZELKinPosition(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinPosition() override;

    //! The variable's value here, or NaN when it is undefined.
    double GetVariableValue(const ZELKinVariable* variable) const;
    bool IsVariableDefined(const ZELKinVariable* variable) const;
    //! The values of `count` variables at once into `values`, NaN for each
    //! one undefined here or null: one walk over the position's values, for
    //! a reader that takes the same few axes from every position. Each
    //! variable must be alive and whole (not being destroyed), which the
    //! caller vouches for, so that no entry needs its target's type checked.
    void GetVariableValues(const ZELKinVariable* const* variables, int count, double* values) const;
    //! Sets or replaces the variable's value; NaN removes it (nothing happens
    //! when it has none). Does nothing for a null variable.
    void SetVariableValue(ZELKinVariable* variable, double value);
    //! Makes room for `count` variable values ahead, so that setting them
    //! one by one does not grow the storage again; changes nothing else.
    void ReserveVariableValues(int count);

    //! Feedrate of the move to this position (mm/min); NaN when the position
    //! gives none.
    double GetFeedrate() const;
    void SetFeedrate(double feedrate);
    //! The feed the NC writer wrote for the move to this position (mm/min):
    //! the feedrate, or the feed a tow event asked for. NaN until written;
    //! not saved, and no change of the position's geometry.
    double GetActualFeedrate() const;
    void SetActualFeedrate(double feedrate);
    //! The material (U) value from which the NC writer counts this
    //! position's U: its course's first U, when that course had U values
    //! (mm). NaN while unset; not saved, and no change of the position's
    //! geometry.
    double GetUAxisOffset() const;
    void SetUAxisOffset(double offset);
    //! Whether the position is output with the tool-orientation
    //! transformation (TRAORI) active; true by default.
    bool IsTraori() const;
    void SetTraori(bool traori);
    //! The toolpath point that the position realises; null for positions that
    //! no point produced (link moves, probing) or once the point has gone.
    const ZELTPPoint* GetToolPathPoint() const;
    void SetToolPathPoint(const ZELTPPoint* point);
    //! Lateral offset of the head at this position (mm); 0 by default.
    double GetLateralPositionAdjustment() const;
    void SetLateralPositionAdjustment(double adjustment);

    void Save(ZELGeoStream& stream) const override;
    //! Replaces the values with the saved ones; a count larger than the
    //! values present stops at the end of the record, and a value of a
    //! variable that was destroyed before saving (an empty reference) is
    //! dropped. Throws ZELGeoGeometryNotFoundException when a saved variable
    //! or toolpath point reference does not resolve.
    void Load(ZELGeoStream& stream) override;

protected:
    //! For subclasses: inserts the new position into `script` at `index`
    //! (-1 appends), as ZELKinCommand does, and throws what it throws.
    ZELKinPosition(ZELKinPositionPrivate* d, ZELKinScript* script, int index);
    //! Loading constructor for subclasses; `d` must be a position private object.
    ZELKinPosition(ZELKinCommandPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Appends a new position to the probe procedure. A null procedure gives
    //! a position outside any container and any script.
    explicit ZELKinPosition(ZELKinProbeProcedure* procedure);
    //! Inserts a new position into the link at `index` (-1 appends) and
    //! throws what the link's insertion throws. A null link gives a position
    //! outside any container and any script.
    ZELKinPosition(ZELKinCourseLink* link, int index);
    void _constructor_checker();
    QVariant ReadUAxisOffset() const;
    void WriteUAxisOffset(const QVariant& offset);

    Q_DECLARE_PRIVATE(ZELKinPosition)
};

#endif // ZELKINPOSITION_H
