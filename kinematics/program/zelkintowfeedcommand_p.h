#ifndef ZELKINTOWFEEDCOMMAND_P_H
#define ZELKINTOWFEEDCOMMAND_P_H

#include "zelkintowfeedcommand.h"
#include "zelkincommand_p.h"

class ZELKINEMATICS_EXPORT ZELKinTowFeedCommandPrivate : public ZELKinCommandPrivate
{
    Q_DECLARE_PUBLIC(ZELKinTowFeedCommand)

public:
    explicit ZELKinTowFeedCommandPrivate(ZELKinTowFeedCommand* q)
        : ZELKinCommandPrivate(q)
    {
    }

    QList<double> rates;
};

#endif // ZELKINTOWFEEDCOMMAND_P_H
