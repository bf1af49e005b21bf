#ifndef ZELKINTOOLCHANGE_H
#define ZELKINTOOLCHANGE_H

#include "zelkincommand.h"

#include <QString>

class ZELKinCourseLink;
class ZELKinToolChangePrivate;

/*!
    The command of a course link that changes the head and the roller.

    Record (after the command's): new head (QString), new roller (QString).
*/
class ZELKINEMATICS_EXPORT ZELKinToolChange : public ZELKinCommand
{
    Q_OBJECT

public:
    //! Loading constructor: empty head and roller, no script until Load.
    Q_INVOKABLE ZELKinToolChange(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinToolChange() override;

    //! The head to change to.
    QString GetNewHead() const;
    //! The roller to change to.
    QString GetNewRoller() const;

    void Save(ZELGeoStream& stream) const override;
    //! Throws what ZELKinCommand::Load throws.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinToolChange(ZELKinToolChangePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Appends the tool change to the link. Mind the order: the roller
    //! comes first, then the head. A null link gives a command outside any
    //! container and any script.
    ZELKinToolChange(ZELKinCourseLink* link, const QString& newRoller, const QString& newHead);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinToolChange)
};

#endif // ZELKINTOOLCHANGE_H
