#ifndef ZELKINTOWFEEDCOMMAND_H
#define ZELKINTOWFEEDCOMMAND_H

#include "zelkincommand.h"

#include <QList>

class ZELKinTowCourse;
class ZELKinTowFeedCommandPrivate;

/*!
    The feed rate of each tow from a point of a tow course on.

    Record (after the command's): number of rates (qint32), then each rate
    (double).
*/
class ZELKINEMATICS_EXPORT ZELKinTowFeedCommand : public ZELKinCommand
{
    Q_OBJECT

public:
    //! Loading constructor: no rates and no script until Load.
    Q_INVOKABLE ZELKinTowFeedCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinTowFeedCommand() override;

    //! One feed rate per tow, in tow order.
    QList<double> GetRates() const;
    //! The largest rate, but never less than 1.0: no rates, or rates all
    //! below 1.0, give 1.0. NaN rates are passed over.
    double GetLargestRate() const;

    void Save(ZELGeoStream& stream) const override;
    //! Throws what ZELKinCommand::Load throws. A rate count larger than the
    //! rates present stops at the end of the record.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinTowFeedCommand(ZELKinTowFeedCommandPrivate* d, ZELGeoContainer* container,
                         const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Inserts the new command into the course at `index` (-1 appends),
    //! throwing what the course's insertion throws, and keeps a copy of the
    //! rates. A null course gives a command outside any container and any
    //! script.
    ZELKinTowFeedCommand(ZELKinTowCourse* course, const QList<double>& rates, int index);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinTowFeedCommand)
};

#endif // ZELKINTOWFEEDCOMMAND_H
