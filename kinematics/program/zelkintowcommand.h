#ifndef ZELKINTOWCOMMAND_H
#define ZELKINTOWCOMMAND_H

#include "zelkincommand.h"

#include <zelcomptowmask.h>

class ZELKinTowCommandPrivate;
class ZELKinTowCourse;

/*!
    A tow event at a point of a tow course: the tows of its mask start or
    stop being laid, or become or stop being forced. The NC writer tells the
    kinds apart by their values.

    Record (after the command's): tow mask (its stream form), type (qint32).
*/
class ZELKINEMATICS_EXPORT ZELKinTowCommand : public ZELKinCommand
{
    Q_OBJECT

public:
    //! What happens to the tows of the mask. The values are saved, so they
    //! never change.
    enum CommandType : qint32 {
        //! The tows start being laid.
        Add = 0,
        //! The tows stop being laid.
        Cut = 1,
        //! The tows become forced.
        Force = 2,
        //! Forced tows are released.
        Release = 3
    };
    Q_ENUM(CommandType)

    //! Loading constructor: a mask of 0 tows, Add, and no script until Load.
    Q_INVOKABLE ZELKinTowCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinTowCommand() override;

    //! The tows the command acts on.
    ZELCompTowMask GetTowMask() const;
    CommandType GetType() const;

    void Save(ZELGeoStream& stream) const override;
    //! Throws what ZELKinCommand::Load throws. A saved type that this
    //! library does not name is kept as it was saved.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinTowCommand(ZELKinTowCommandPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    /*!
        Inserts the new command into the course at `index` (-1 appends),
        throwing what the course's insertion throws, and keeps the mask and
        the type. Then throws ZELSysException "mask is not compatible with
        machine" when the mask's tow count is not that of the maximum mask of
        the course's fibre placement machine, or when the course leads to no
        such machine. That check comes after the insertion on purpose: the
        rejected command is destroyed, but the course keeps its entry, which
        reads null.
    */
    ZELKinTowCommand(ZELKinTowCourse* course, const ZELCompTowMask& mask, CommandType type, int index);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinTowCommand)
};

#endif // ZELKINTOWCOMMAND_H
