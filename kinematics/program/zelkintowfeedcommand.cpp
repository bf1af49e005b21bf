#include "zelkintowfeedcommand.h"
#include "zelkintowfeedcommand_p.h"

#include "zelkintowcourse.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinTowFeedCommand)

ZELKinTowFeedCommand::ZELKinTowFeedCommand(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinTowFeedCommand(new ZELKinTowFeedCommandPrivate(this), container, reference)
{
}

ZELKinTowFeedCommand::ZELKinTowFeedCommand(ZELKinTowFeedCommandPrivate* d, ZELGeoContainer* container,
                                           const ZELGeoGeometryRef& reference)
    : ZELKinCommand(d, container, reference)
{
}

ZELKinTowFeedCommand::ZELKinTowFeedCommand(ZELKinTowCourse* course, const QList<double>& rates, int index)
    : ZELKinCommand(new ZELKinTowFeedCommandPrivate(this), course, index)
{
    Q_D(ZELKinTowFeedCommand);
    d->rates = rates;
}

ZELKinTowFeedCommand::~ZELKinTowFeedCommand() = default;

void ZELKinTowFeedCommand::_constructor_checker()
{
    ZELKinTowFeedCommand checker(nullptr, ZELGeoGeometryRef());
}

QList<double> ZELKinTowFeedCommand::GetRates() const
{
    Q_D(const ZELKinTowFeedCommand);
    return d->rates;
}

double ZELKinTowFeedCommand::GetLargestRate() const
{
    Q_D(const ZELKinTowFeedCommand);
    // The floor of 1.0 is deliberate: the NC writer scales the pinch
    // distance by this rate, which must never shorten it. NaN (no rate for
    // a tow) compares false and is passed over.
    double largest = 1.0;
    for (const double rate : d->rates) {
        if (rate > largest)
            largest = rate;
    }
    return largest;
}

void ZELKinTowFeedCommand::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinTowFeedCommand);
    ZELKinCommand::Save(stream);
    stream << qint32(d->rates.size());
    for (const double rate : d->rates)
        stream << rate;
}

void ZELKinTowFeedCommand::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinTowFeedCommand);
    ZELKinCommand::Load(stream);
    qint32 count = 0;
    stream >> count;
    d->rates.clear();
    for (qint32 entry = 0; entry < count && !stream.atEnd(); ++entry) {
        double rate = 0.0;
        stream >> rate;
        d->rates.append(rate);
    }
}
