#ifndef ZELKINVERIFYCOMMAND_H
#define ZELKINVERIFYCOMMAND_H

#include "zelkincommand.h"

/*!
    "zelkin verify --machine M.xml --toolpath T.json --nc PATH [--json]":
    reads posted NC back and checks, line by line and with kinematics of its
    own, that the machine will do what the toolpath asks: every course laid,
    the roller on each toolpath point with its normal and direction of
    travel, every axis within its limits and speeds, no wrist flip inside a
    course, tows added and cut where the toolpath adds and cuts them. Exit
    status 0 when every check passes, 1 when any fails, 3 when an input
    cannot be read.
*/
class ZELKinVerifyCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    int Run(const QStringList& arguments) override;
};

#endif // ZELKINVERIFYCOMMAND_H
