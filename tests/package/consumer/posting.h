#ifndef POSTING_H
#define POSTING_H

#include <QString>
#include <QStringList>

//! Posts the toolpath for the machine into the folder `output`; returns the
//! library's progress lines. Throws ZELSysException on any failure, a file
//! that cannot be written included.
QStringList PostToolpath(const QString& machinePath, const QString& toolpathPath, const QString& output);
//! Posts the same one procedure at a time (ZELKinStreamingPost), holding
//! two at most. Throws ZELSysException on any failure.
void PostToolpathByProcedure(const QString& machinePath, const QString& toolpathPath, const QString& output);

#endif // POSTING_H
